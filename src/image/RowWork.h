#pragma once

#include <functional>

// Progress of a long picture job: phase 4 is "Filtering...", phase 5 "Retrieving color
// information..."; percent is the job's own figure. Return false to cancel the job. Called on
// the thread that runs the job, between bands of rows, never from the worker threads.
using FilterProgress = std::function<bool(int phase, int percent)>;

// Runs work(begin, end) over the rows first..last (inclusive) in bands, each band split across
// the global thread pool when parallel is set (the work for distinct rows must then touch
// distinct pixels). After each band, when progress is set, reports phase with
// row * 100 / percentBase and stops when it answers false. Returns false when cancelled.
bool ForRows(int first, int last, const std::function<void(int begin, int end)> &work,
             bool parallel, int phase = 4, int percentBase = 0,
             const FilterProgress &progress = {});
