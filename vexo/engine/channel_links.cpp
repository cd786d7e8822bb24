#include "engine/channel_links.h"

#include <set>

#include "engine/item.h"

namespace vexo {
namespace {

bool numeric(ValueType type) { return type == ValueType::Integer || type == ValueType::Float; }

}  // namespace

bool ChannelLinks::add(const ChannelLink& link, std::string* problem) {
  auto say = [problem](std::string text) {
    if (problem) *problem = std::move(text);
    return false;
  };
  if (!link.from || !link.to) return say("a link needs two items");
  if (link.fromChannel >= link.from->channelCount() || link.toChannel >= link.to->channelCount())
    return say("no such channel");
  const ValueType fromType = link.from->channel(link.fromChannel).type;
  const ValueType toType = link.to->channel(link.toChannel).type;
  if (fromType != toType && !(numeric(fromType) && numeric(toType)))
    return say(std::string("a ") + valueTypeName(fromType) + " channel cannot drive a " + valueTypeName(toType) +
               " channel");
  if (link.from == link.to && link.fromChannel == link.toChannel) return say("a channel cannot drive itself");
  for (const ChannelLink& existing : incoming(*link.to, link.toChannel))
    if (existing.from == link.from && existing.fromChannel == link.fromChannel) return say("the link exists already");
  if (reaches(*link.from, link.fromChannel, *link.to, link.toChannel))
    return say("it would close a loop: the source already takes its value from the target");
  incoming_[{link.to, link.toChannel}].push_back(link);
  ++count_;
  return true;
}

const std::vector<ChannelLink>& ChannelLinks::incoming(const Item& item, std::size_t channel) const {
  static const std::vector<ChannelLink> kNone;
  auto it = incoming_.find({&item, channel});
  return it == incoming_.end() ? kNone : it->second;
}

// Whether the value of (item, channel) comes, through links, from (target, targetChannel).
bool ChannelLinks::reaches(const Item& item, std::size_t channel, const Item& target, std::size_t targetChannel) const {
  std::vector<std::pair<const Item*, std::size_t>> pending = {{&item, channel}};
  std::set<std::pair<const Item*, std::size_t>> seen;
  while (!pending.empty()) {
    const auto [current, currentChannel] = pending.back();
    pending.pop_back();
    if (current == &target && currentChannel == targetChannel) return true;
    if (!seen.insert({current, currentChannel}).second) continue;
    for (const ChannelLink& link : incoming(*current, currentChannel)) pending.emplace_back(link.from, link.fromChannel);
  }
  return false;
}

}  // namespace vexo
