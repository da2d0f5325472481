#include "framewright/thornmere/progress.h"

ScProgressIndicator::~ScProgressIndicator() = default;
