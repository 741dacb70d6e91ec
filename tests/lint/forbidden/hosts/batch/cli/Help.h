#include "Fit.h"
#include "hosts/common/Shared.h"
#include "cli/Help.h"
#include <iostream>
