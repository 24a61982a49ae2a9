#include "base/DatePattern.h"
