#include "base/DateValue.h"
