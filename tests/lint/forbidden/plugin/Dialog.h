#include "MapFile.h"
#include <gemmi/model.hpp>
#include <QWidget>
#include "Engine.h"
