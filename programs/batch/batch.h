// Runs an application over many drawings, each in a process of its own, so that one that crashes, hangs or fails takes
// no other along.
#pragma once

#include <string>
#include <vector>

namespace batch {

struct Order {
    std::vector<std::string> drawings;       // in the order in which they are begun
    std::vector<std::string> hostArguments;  // in front of the application
    // The application and its arguments. {} stands for the drawing, {name} for its name without folder and suffix;
    // without either the drawing is opened.
    std::vector<std::string> command;
    int jobs = 1;           // processes at a time
    double limit = 0;       // seconds for one drawing; 0: none
    std::string log;        // one line for each drawing that is done
    bool resume = false;    // drawings that the log has are left out
    bool retry = false;     // but those that failed there are done again
    std::vector<int> good;  // exit statuses that count as good, beside 0
};

// Tells of each drawing as it is done, and of all at the end. 0: all are good; 1: some failed, or the run was stopped;
// 2: the log doesn't fit the order.
int run(const Order& order);

}  // namespace batch
