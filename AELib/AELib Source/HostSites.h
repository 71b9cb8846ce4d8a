// The framework's assertions by name: the file and line that each one reports to the user. They are fixed and
// do not follow the source. Checks that guard memory beyond the fixed set use lines below 20. A handle that
// holds no living instance of its level (flat bytes, an old or cleared handle) counts as no handle.
#pragma once

namespace AELib::site {

inline constexpr char kMainFile[] = "AELib/AELib Source/Main";
inline constexpr int kInData = 1;
inline constexpr int kOutData = 2;
inline constexpr int kGlobalData = 75;  // every command but the first needs the global instance
inline constexpr int kUtils = 87;       // no utility callbacks at global set-up

inline constexpr char kGlobalManagerFile[] = "AELib/AELib Source/GlobalManager";
inline constexpr int kSequenceData = 125;
inline constexpr int kPiPLFound = 261;
inline constexpr int kPiPLLocked = 264;
inline constexpr int kPiPLWellFormed = 269;

inline constexpr char kSequenceManagerFile[] = "AELib/AELib Source/SequenceManager";
inline constexpr int kFrameData = 142;

inline constexpr char kFrameManagerFile[] = "AELib/AELib Source/FrameManager";
inline constexpr int kSourceLayer = 1;
inline constexpr int kOutputWorld = 2;

inline constexpr char kAEContextFile[] = "AELib/AELib Source/AEContext";
inline constexpr int kParamIndex = 1;
inline constexpr int kHandleNotNull = 2;
inline constexpr int kPopupItem = 3;
inline constexpr int kProcessorCount = 219;
inline constexpr int kFloatParamType = 309;
inline constexpr int kIntParamType = 361;

inline constexpr char kAEPixelBufferFile[] = "AELib/AELib Source/AEPixelBuffer";
inline constexpr int kWorldHasPixels = 1;
inline constexpr int kWorldRowsFit = 2;
inline constexpr int kWorldSize = 3;

}  // namespace AELib::site
