#pragma once

namespace karno::bench {

// How much the benchmarks do. The tiny load shows that each still runs and that both sides of a row do the
// same; its times mean nothing.
void useTinyLoad();
bool isTinyLoad();

// To be asked while a benchmark runs or is registered, not before.
template <class T>
T amount(T usual, T tiny) {
  return isTinyLoad() ? tiny : usual;
}

}  // namespace karno::bench
