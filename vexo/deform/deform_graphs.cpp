#include "deform/deform_graphs.h"

#include <algorithm>

namespace vexo {

bool DeformGraphs::link(std::string_view graph, Item& from, Item& to) {
  auto found = graphs_.find(graph);
  if (found == graphs_.end()) found = graphs_.emplace(std::string(graph), Links{}).first;
  std::vector<Item*>& links = found->second[&from];
  if (std::find(links.begin(), links.end(), &to) != links.end()) return false;
  links.push_back(&to);
  return true;
}

const std::vector<Item*>* DeformGraphs::links(std::string_view graph, const Item& from) const {
  const auto found = graphs_.find(graph);
  if (found == graphs_.end()) return nullptr;
  const auto item = found->second.find(&from);
  return item == found->second.end() || item->second.empty() ? nullptr : &item->second;
}

}  // namespace vexo
