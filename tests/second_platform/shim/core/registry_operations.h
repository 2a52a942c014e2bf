#pragma once

#include "core/platform_types.h"
