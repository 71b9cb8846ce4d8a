// The library's assertions by name: the file and line that each one reports. Users of the system know
// failures by these pairs, so they are fixed here and do not follow the source. Checks that guard memory
// beyond the fixed set use lines below 20.
#pragma once

namespace PILib::site {

inline constexpr char kFrameBufferFile[] = "PILib/PILib Source/FrameBuffer";
inline constexpr int kElementInRow = 1;  // only in builds that check element access
inline constexpr int kSizeNotNegative = 2;
inline constexpr int kSourceCoversDestination = 3;
inline constexpr int kDepthCanBlend = 4;         // painting and blending exist for the two host depths
inline constexpr int kLoadFloatAlphaSize = 112;  // ChannelBuf<Channel32f>::loadAlpha compares heights only
inline constexpr int kAlignment = 699;
inline constexpr int kTransposeChannel = 857;
inline constexpr int kLoadAlphaType = 873;
inline constexpr int kLoadAlphaSize = 881;
inline constexpr int kAllocateChannel = 900;
inline constexpr int kTransposePixel = 1068;
inline constexpr int kBlendSize = 1507;
inline constexpr int kAllocatePixel = 1598;

inline constexpr char kFrameBufferOpsFile[] = "PILib/PILib Source/FrameBufferOps";
inline constexpr int kExtractCovers = 1;
inline constexpr int kThresholdKey = 2;
inline constexpr int kBrightenKey = 3;
inline constexpr int kBrightenChannelAmount = 64;
inline constexpr int kBrightenPixelAmount = 102;
inline constexpr int kMaskAlphaSize = 140;
inline constexpr int kMultAlphaSize = 159;
inline constexpr int kExtractId7 = 273;
inline constexpr int kExtractId8 = 279;
inline constexpr int kExtractIdUnknown = 284;
inline constexpr int kInvertKey = 326;
inline constexpr int kMaskAlphaKey8 = 454;   // the mask is not Channel8
inline constexpr int kMaskAlphaKey15 = 457;  // the mask is not Channel15
inline constexpr int kMaskAlphaKey16 = 460;  // the mask is not Channel16
inline constexpr int kMaskAlphaKey = 465;    // the pixels have no integer mask of their own
inline constexpr int kMultAlphaKey8 = 477;
inline constexpr int kMultAlphaKey15 = 486;
inline constexpr int kMultAlphaKey16 = 495;
inline constexpr int kMultAlphaKey32 = 504;
inline constexpr int kMultAlphaNot32 = 506;
inline constexpr int kMultAlphaKey32f = 513;
inline constexpr int kMultAlphaNot32f = 515;
inline constexpr int kMultAlphaKey = 521;
inline constexpr int kPreviewAlphaKey = 550;
inline constexpr int kExtractKey = 588;

inline constexpr char kSATBlurFile[] = "PILib/PILib Source/SATBlur";
inline constexpr int kRadiusNotNegative = 1;
inline constexpr int kSourceNotEmpty = 2;

inline constexpr char kThreadRowsFile[] = "PILib/PILib Source/ThreadRows";
inline constexpr int kIterationInRun = 1;

}  // namespace PILib::site
