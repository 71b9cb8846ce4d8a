#define PILIB_LANES 8
#define PILIB_KERNELS kBlurRowAvx2
#include "BlurRowKernels.ipp"
