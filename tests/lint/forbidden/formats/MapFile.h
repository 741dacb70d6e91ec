#include "Engine.h"
