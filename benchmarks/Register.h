// The benchmarks of each source, for main to register.
#pragma once

namespace bench {

void RegisterBlurs();
void RegisterFrames();
void RegisterMemory();
void RegisterPasses();
void RegisterPluginFrames();

}  // namespace bench
