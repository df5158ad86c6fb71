// The same for tests on the fake platform. Each of them includes all of it anyway.
#pragma once
#include "fake_platform.h"
#include "tests.h"
