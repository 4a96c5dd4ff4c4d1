#include "ilogtracer.h"

ILogTracer::~ILogTracer() = default;
