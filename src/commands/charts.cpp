#include "commands/charts.hpp"

namespace zentable {

namespace {

ChartPanel panel(const char* title, const char* x_label, const char* y_label, const char* header,
                 const char* x, const char* y, ChartPanel::Style style) {
    ChartPanel p;
    p.title = title;
    p.x_label = x_label;
    p.y_label = y_label;
    p.header = header;
    p.x = x;
    p.y = y;
    p.style = style;
    return p;
}

// A cumulative curve from (0, 0) to (1, 1), beside the line a random order draws.
ChartPanel against_diagonal(ChartPanel p) {
    p.diagonal = true;
    p.from_origin = true;
    return p;
}

}  // namespace

Chart evaluation_chart() {
    return {
        // Binary target: Cum_Rate is the share of all bads found down to the group.
        against_diagonal(panel("Gains chart", "Share of records, highest scores first",
                               "Share of Y=1 found", "Decile", "{Cum_Freq}/{Total:Cum_Freq}",
                               "{Cum_Rate}", ChartPanel::lines)),
        panel("Lift per group", "Group", "Lift", "Decile", "{Decile}",
              "{Mean_Bad}/{Total:Mean_Bad}", ChartPanel::bars),
        against_diagonal(panel("ROC curve", "False positive rate", "True positive rate", "Decile",
                               "({Cum_Freq}-{Cum_Bad})/({Total:Cum_Freq}-{Total:Cum_Bad})",
                               "{Cum_Rate}", ChartPanel::lines)),
        // Continuous target: the share of the sum of y found down to the group.
        against_diagonal(panel("Gains chart", "Share of records, highest scores first",
                               "Share of the sum of Y found", "Decile", "{Sum:Freq}/{Total:Freq}",
                               "{Sum:Freq}*{Cum_Mean_Actual}/({Total:Freq}*{Total:Mean_Actual})",
                               ChartPanel::lines)),
        panel("Lift per group", "Group", "Lift", "Decile", "{Decile}",
              "{Mean_Actual}/{Total:Mean_Actual}", ChartPanel::bars),
    };
}

Chart qq_chart() {
    // The variable's column is named after the variable: the fourth.
    return {panel("Normal QQ plot", "Standard normal quantile", "Sorted value", "#", "{Q}", "{4}",
                  ChartPanel::points)};
}

Chart woe_chart() {
    return {panel("Weight of evidence", "Bin", "WOE", "#", "{#}", "{WOE}", ChartPanel::bars)};
}

}  // namespace zentable
