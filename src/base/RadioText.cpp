#include "base/RadioText.h"
