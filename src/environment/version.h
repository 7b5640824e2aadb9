#pragma once

// The product's identity constants, shown by the banner and the studio macros.
namespace Version {

inline constexpr int major = 5;
inline constexpr int minor = 4;
inline constexpr int revision = 1;
inline constexpr const char *shortVersion = "5.4";
inline constexpr const char *targetName = "ARM";
inline constexpr int targetIdentifier = 8;
inline constexpr const char *buildStamp = "2026041515";
inline constexpr const char *buildDate = "2026-04-15";
inline constexpr const char *sourceRevision = "61521";

inline constexpr const char *productName = "Veldane for ARM";
inline constexpr const char *productNameShort = "Veldane";
// The family's names, which the studio macros keep.
inline constexpr const char *studioNameShort = "Tarnbench";
inline constexpr const char *studioName = "Tarnbench for ARM";
inline constexpr const char *toolDisplayName = "Quillmake";
inline constexpr const char *companyName = "Ostrand Instruments Limited";

}  // namespace Version

namespace Version {

// The maker's notice, printed under the banner.
inline constexpr const char *noticeLines[] = {
    "Copyright (c) 2026 Ostrand Instruments Limited.",
    "This program is provided as is, without warranty of any kind.",
};

}  // namespace Version
