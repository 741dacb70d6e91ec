#include <vtkActor.h>
#include "Dialog.h"
#include "view/Scene.h"
