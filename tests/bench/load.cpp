#include "load.h"

namespace karno::bench {
namespace {

bool isTiny = false;

}  // namespace

void useTinyLoad() { isTiny = true; }

bool isTinyLoad() { return isTiny; }

}  // namespace karno::bench
