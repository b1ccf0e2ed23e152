#pragma once

#include "ReelCore/Platform/URL.h"

#include <string_view>

namespace TestSupport {

/// Makes the folder of a shooting day: 22 short clips of several cameras (every rate and kind of
/// file that sound is matched with) and 9 recordings, under names that a set comes up with. What is
/// in it, and at what time of day, stands in one table in the source. Throws std::runtime_error
/// where ffmpeg fails.
///
/// By the clock (hours, minutes, seconds; F0001 to F0003, N0002 and NOTIME tell no other time than
/// midnight):
///
///     10:00:00  clips of cameras A and B under T001 and under the second recorder
///     10:00:20  a clip of each under a recording in two parts, T002-1 and T002-2
///     10:10:00  camera C; NEARMISS starts as the first clip ends
///     11:01:00  camera D, three clips of the fast rates under one long recording
///     12:00:00  LONELY, to which no clip belongs
///     14:00:00  camera E and 15:00:00 F0004 and F0005, without sound
///     23:59:58  NIGHT, which goes on past midnight, with N0001
void makeShootingDay(const ReelCore::URL& folder);

/// Two of the day's clips, one with two recordings and one with none, and its LONELY recording:
/// for tests that need no more.
void makeShortDay(const ReelCore::URL& folder);

/// Adds to any folder what lies about on real drives and is no clip: empty and random files,
/// folders with a clip's name, a copy under way, pipes, links that lead nowhere or in a circle, and
/// links to `clip` and `recording`, two files below it.
void addOddEntries(const ReelCore::URL& folder, std::string_view clip, std::string_view recording);

}  // namespace TestSupport
