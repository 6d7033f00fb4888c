// What the evaluation of a scene keeps between questions. It only reads the graph, and sees by the graph's counts
// whether what it keeps is still valid. For the files of standalone/scene only.
#pragma once

#include "standalone/scene/evaluation/plain_matrices.h"
#include "standalone/scene/evaluation/positions.h"
#include "standalone/scene/evaluation/records.h"
#include "standalone/scene/graph/graph.h"

namespace vantorelix::standalone {

struct Evaluation {
  explicit Evaluation(const Graph& of) : graph(of), records(of), plain(of, records), positions(of.counts.motion) {}

  const Graph& graph;
  Records records;
  PlainMatrices plain;
  Positions positions;
};

}  // namespace vantorelix::standalone
