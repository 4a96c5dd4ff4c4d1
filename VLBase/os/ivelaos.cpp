#include "ivelaos.h"

IVelaOS::~IVelaOS() = default;
