#pragma once

#include <string>
#include <vector>

#include "Bench.h"
#include "Link.h"

class Ordeal;

/// One way of ill-treating the daemon.
struct Row {
    std::string name;
    const char* what;
    std::vector<Link> links; ///< once for each of them
    void (*run)(Ordeal&);
    Needs needs = {};
    const char* notSanitized = nullptr; ///< why a daemon with a sanitizer is spared it
};

/// All of them, in the order of the table.
const std::vector<Row>& allRows();
