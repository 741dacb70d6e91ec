#include <vtkActor.h>
#include "fast/FastSearch.h"
