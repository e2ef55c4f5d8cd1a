#pragma once

#include "platform/Files.h"

namespace vantrel {

/// The files that FilesTest.cpp is about; each program that it is built into says which.
Files& filesUnderTest();

}  // namespace vantrel
