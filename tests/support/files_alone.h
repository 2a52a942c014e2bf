#pragma once

#include "platform/device/files_alone.h"

using platform::FilesAlone;
