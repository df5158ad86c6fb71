#pragma once

namespace karno::platform::cocoa {

// Has each text shown in fonts that have its letters. GNUstep (gui 0.29) looks for another font itself, but
// gives up for all that follows once one has disappointed it, and takes a light one amid bold letters. Before
// the first text is drawn; main thread.
void substituteFonts();

}  // namespace karno::platform::cocoa
