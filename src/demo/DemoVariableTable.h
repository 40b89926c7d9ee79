#pragma once

#include <span>

/// One row of the table of server variables.
struct DemoVariableRow {
    enum Domain { Text, Switch, Integer, Decimal, Gametype };
    enum Trait { None, ReadOnly, Latched };

    const char *name;
    const char *value;
    Domain domain = Text;
    int lowest = 0; ///< of Integer and Decimal
    int highest = 0;
    Trait trait = None;
};

/// The variables that do not follow from the lists of maps and gametypes.
std::span<const DemoVariableRow> demoVariableTable();

/// The names of those that a sparse server knows.
std::span<const char *const> demoSparseNames();
