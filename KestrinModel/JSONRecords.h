// The helpers moved to the core.
#pragma once

#include "KestrinCore/JSONRecords.h"
