#include "base/Text.h"
