#include <QWidget>
#include "fast/FastSearch.h"
#include "Dialog.h"
#include "cli/Help.h"
#include "hosts/common/Shared.h"
