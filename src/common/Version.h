// Version.h: the version of this program, as documents that it writes name it.
#pragma once

inline constexpr char kLumoraVersion[] = "1.0";
