#include "include/Interface.h"
#include "base/Numbers.h"
#include <QString>
#include <unistd.h>
