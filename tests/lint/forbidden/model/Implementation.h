#include "Dialog.h"
#include "Interface.h"
