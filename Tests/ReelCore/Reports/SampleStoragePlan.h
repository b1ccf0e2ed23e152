#pragma once

#include "ReelCore/Planning/StorageCalculator.h"
#include "ReelCore/Reports/Report.h"

namespace TestSupport {

/// Two cameras for five days of eight hours at 176 Mbps each, sound on eight channels, three
/// copies.
ReelCore::StorageCalculator::Plan samplePlan();

/// What the sample plan makes.
ReelCore::StorageCalculator::Estimate sampleEstimate();

/// 42 XQD cards of 120 GB in rotation and three spares.
ReelCore::Report::PlannedCards sampleCards();

}  // namespace TestSupport
