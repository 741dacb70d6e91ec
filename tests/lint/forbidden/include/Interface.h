#include <zlib.h>
#include "Implementation.h"
#include <QString>
#include <vector>
