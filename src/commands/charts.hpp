#pragma once

#include "commands/catalogue.hpp"

namespace zentable {

// The pictures that catalogue entries declare for their results.

// Binary and continuous evaluations: the gains chart with the diagonal, the
// lift of each group, and for a binary target the ROC curve. A result draws
// the panels whose columns it has.
Chart evaluation_chart();

// The sorted values against the normal quantiles.
Chart qq_chart();

// The weight of evidence of each bin, one series for each variable.
Chart woe_chart();

}  // namespace zentable
