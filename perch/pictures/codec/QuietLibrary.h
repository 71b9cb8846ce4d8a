// The image library, and those that it uses, print on stderr what they think of a file. Whoever reads or
// writes one is told what matters of it in a sentence of our own.
#pragma once

namespace pictures {

// To be called before the library is used.
void silenceLibrary();

}  // namespace pictures
