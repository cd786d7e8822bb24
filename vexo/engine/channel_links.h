// Links between channels: a linked channel reads the value of the channel that drives it.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace vexo {

class Item;

struct ChannelLink {
  Item* from;
  std::size_t fromChannel;
  Item* to;
  std::size_t toChannel;
};

class ChannelLinks {
 public:
  // Records that `to`'s channel reads `from`'s. False, with the reason in
  // `problem`, when a channel does not exist, the value types differ (integer
  // and float may drive each other), the link is there already, or it would
  // make a channel depend on itself.
  bool add(const ChannelLink& link, std::string* problem);

  // The links into one channel, in the order they were added. The last one gives the value.
  const std::vector<ChannelLink>& incoming(const Item& item, std::size_t channel) const;
  std::size_t size() const { return count_; }

 private:
  bool reaches(const Item& item, std::size_t channel, const Item& target, std::size_t targetChannel) const;

  std::map<std::pair<const Item*, std::size_t>, std::vector<ChannelLink>> incoming_;
  std::size_t count_ = 0;
};

}  // namespace vexo
