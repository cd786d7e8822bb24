// Channel values as they evaluate in one action at one time: links are
// followed, and a locator's matrices are computed from its transform stack
// and its parents.
//
// Items that are not locators are transparent in the hierarchy: a locator's
// parent frame is the world matrix of its nearest locator ancestor. Computed
// matrices are kept until the scene's values change, so a chain of locators
// placed by each other evaluates once, in time linear in its length.
//
// A channel reads, in order: the keys or value of the evaluation's own
// action; for "edit", those of each active action clip; those of "setup";
// the channel's initial value. Keys take precedence over a value of the
// same action and are evaluated at the evaluation's time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "engine/locator_types.h"
#include "engine/matrix.h"
#include "engine/scene.h"
#include "engine/value.h"

namespace vexo {

class Evaluation {
 public:
  // The scene must outlive the evaluation; its values may change between calls.
  Evaluation(const Scene& scene, std::string_view action, double time);

  const std::string& action() const { return action_; }
  double time() const { return time_; }
  // Moves to another time: computed matrices are dropped, but what each
  // channel reads from (its link source, keys or value) is kept.
  void setTime(double time);

  // The value a channel reads, or null when the channel index is out of
  // range or the value depends on itself (through links between matrix
  // channels and the hierarchy). A stored value stays valid while the
  // scene's values are unchanged; a computed matrix until the next call.
  const Value* value(const Item& item, std::size_t channel);
  // An integer or float channel's value as a number; false for anything else.
  bool number(const Item& item, std::size_t channel, double& out);

  // The keys a read of the channel evaluates (before links are followed), or
  // null when it reads a value instead.
  const KeyCurve* keys(const Item& item, std::size_t channel);

  // One of a locator's matrix channels, exactly as reading that channel gives it.
  // False when the item is no locator or the matrix depends on itself.
  bool matrix(const Item& locator, MatrixChannel which, Matrix& out);

  // The matrix of one transform item alone, from its channels.
  bool transformMatrix(const Item& transform, Matrix& out);

  // The world matrix of the item's nearest locator ancestor (the frame of the
  // node the item hangs under), the identity when it has none. Unlike the
  // "parentMatrix" channel it ignores links into that channel. False when the
  // matrix depends on itself.
  bool hierarchyParentWorld(const Item& item, Matrix& out);

 private:
  // The channel whose stored or computed value a channel reads: the end of its chain of links.
  std::pair<const Item*, std::size_t> source(const Item& item, std::size_t channel) const;
  // Where a channel's value comes from, found once per scene revision.
  struct Resolved {
    const Item* from;          // the end of its chain of links
    std::size_t fromChannel;
    int matrix;                // the MatrixChannel `from` computes there, or -1
    const KeyCurve* keys;      // else the keys it reads
    const Value* value;        // else the value it reads
  };
  const Resolved& resolved(const Item& item, std::size_t channel);
  // The one place stored values are looked up: keys are evaluated here.
  const Value& stored(const Item& item, std::size_t channel, const Resolved& r);
  // The keys or value an action itself holds for the channel; both null when neither.
  struct Own {
    const KeyCurve* keys = nullptr;
    const Value* value = nullptr;
  };
  Own resolve(const Item& item, std::size_t channel);
  // Drops what was computed when the scene's values changed since.
  void refresh();
  using MatrixKey = std::pair<const Item*, MatrixChannel>;
  bool compute(const Item& locator, MatrixChannel which, Matrix& out);
  const Item* locatorAncestor(const Item& item) const;
  // The computed matrix that reading a locator's matrix leads to through its
  // links; none when the reading ends at a stored value.
  std::optional<MatrixKey> computedSource(const Item& locator, MatrixChannel which) const;
  // Computes, deepest first and without recursion, the matrices `key` needs
  // that are not known yet, so that a long chain never deepens the call
  // stack. False when one of them depends on itself.
  bool computeDependencies(const MatrixKey& key);
  // A transform channel's value by name; `fallback` when the item has no such channel.
  double channelNumber(const Item& item, int channel, double fallback);
  Vector3 vector3(const Item& item, const int* channels, double fallback);
  // The indices of the channels transform items are read by, per item type.
  enum TransformChannel { kPosX, kPosY, kPosZ, kRotX, kRotY, kRotZ, kOrder, kSclX, kSclY, kSclZ, kShrXY, kShrXZ, kShrYZ, kTransformChannels };
  const int* transformChannels(TypeCode type);

  const Scene& scene_;
  std::string action_;
  double time_;
  Value scratch_;
  Value keyed_;  // the value of the keys read last
  std::vector<std::string> activeActions_;  // for "edit": the active action clips, found when first needed
  bool activeActionsKnown_ = false;
  std::vector<std::vector<int>> transformChannels_;  // by type code; empty until first needed
  std::unordered_map<const Item*, std::vector<Resolved>> resolved_;  // per item, by channel
  struct MatrixKeyHash {
    std::size_t operator()(const MatrixKey& key) const {
      return std::hash<const void*>()(key.first) * 8 + static_cast<std::size_t>(key.second);
    }
  };
  // The matrices being computed, to catch one that needs itself.
  std::vector<MatrixKey> active_;
  bool inDependencies_ = false;
  // The matrices computed since the scene's values last changed.
  // Entries of earlier times (another generation) are stale and overwritten in place.
  struct Computed {
    Matrix matrix;
    std::uint64_t generation;
  };
  std::unordered_map<MatrixKey, Computed, MatrixKeyHash> computed_;
  std::uint64_t generation_ = 0;
  bool known(const MatrixKey& key) const;
  // computeDependencies' work lists, kept to spare allocations.
  struct Step {
    MatrixKey key;
    bool expanded;
  };
  std::vector<Step> pending_;
  std::unordered_set<MatrixKey, MatrixKeyHash> onPath_;
  std::uint64_t computedRevision_ = 0;
};

}  // namespace vexo
