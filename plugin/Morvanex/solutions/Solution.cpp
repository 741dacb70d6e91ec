#include "solutions/Solution.h"

std::list<SolutionScore> Solutions;
