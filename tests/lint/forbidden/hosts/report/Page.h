#include "hosts/common/Shared.h"
#include "Engine.h"
