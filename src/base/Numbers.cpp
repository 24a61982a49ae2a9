#include "base/Numbers.h"
