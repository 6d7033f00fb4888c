#include "standalone/scene/evaluation/expression.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "standalone/scene/transforms/rotation_blend.h"

namespace vantorelix::standalone {
namespace {

using Kind = Operation::Kind;

double number_of(const host::Value& value) {
  if (const double* d = value.as_float()) return *d;
  if (const std::int64_t* i = value.as_int()) return static_cast<double>(*i);
  if (const bool* b = value.as_bool()) return *b ? 1.0 : 0.0;
  return 0.0;
}

bool is_number(const host::Value& value) { return value.as_float() || value.as_int() || value.as_bool(); }

// What an attribute is worth that nobody set.
double default_of(const Node& node, AttributeId attribute) {
  const bool unit = node.type->names == NameSet::unit_conversion ? attribute == attribute::conversionFactor
                                                                 : attribute == attribute::weight;
  return unit ? 1.0 : 0.0;
}

double static_value(const Graph& scene, const Node& node, AttributeId attribute) {
  if (is_channel(attribute) && node.channels) return (*node.channels)[attribute];
  const host::Value* value = scene.stored(node, attribute);
  return value ? number_of(*value) : default_of(node, attribute);
}

class Compiler {
 public:
  Compiler(const Graph& scene, Expression& expression) : scene_(scene), expression_(expression) {}

  using Result = std::optional<std::uint16_t>;

  // The value of a plug: what drives it, or its static value.
  Result plug(const Node& node, AttributeId attribute) {
    const auto key = std::make_pair(node.id, attribute);
    for (const auto& [known, result] : done_)
      if (known == key) return result;
    if (std::find(path_.begin(), path_.end(), key) != path_.end())
      return fail("a cycle of connections through " + scene_.plug_name(node, attribute));
    if (path_.size() >= Expression::kMaxOperations) return fail("a chain of too many connections");
    path_.push_back(key);
    const Result result = unremembered(node, attribute);
    path_.pop_back();
    if (result) done_.emplace_back(key, *result);
    return result;
  }

  std::string why;

 private:
  Result unremembered(const Node& node, AttributeId attribute) {
    const Input* input = scene_.driver(node, attribute);
    if (input == nullptr) {
      Operation value;
      value.node = node.id;
      value.attribute = attribute;
      value.number = static_value(scene_, node, attribute);
      return add(value);
    }
    const Node& source = scene_.at(input->source);
    AttributeId from = input->source_attribute;
    if (input->attribute != attribute) {  // the compound is driven
      if (source.track && from == attribute::output) return track(source, attribute - part(input->attribute, 0));
      if (part_count(from) == 0) return fail(source, from);
      from = part(from, attribute - part(input->attribute, 0));
    }
    return output(source, from);
  }

  // The value that comes out of a node. Remembered too: two plugs may be driven by the same.
  Result output(const Node& source, AttributeId attribute) {
    const auto key = std::make_pair(source.id, attribute);
    for (const auto& [known, result] : done_)
      if (known == key) return result;
    const Result result = unremembered_output(source, attribute);
    if (result) done_.emplace_back(key, *result);
    return result;
  }

  Result unremembered_output(const Node& source, AttributeId attribute) {
    const NodeType& type = *source.type;
    if (source.curve && attribute == attribute::output) return curve(source);
    if (type.names == NameSet::unit_conversion && attribute == attribute::output) return converted(source);
    if (type.names == NameSet::pair_blend && is_blend_part(attribute) && attribute > attribute::outTranslate)
      return blended(source, attribute);
    if (type.category == Category::transform && is_channel(attribute)) return plug(source, attribute);
    // An attribute of its own, such as one that a rig was given by hand.
    const bool own = type.category == Category::transform || type.category == Category::shape;
    const host::Value* value = own ? scene_.stored(source, attribute) : nullptr;
    if (value && is_number(*value)) return plug(source, attribute);
    return fail(source, attribute);
  }

  Result curve(const Node& source) {
    const Input* time = source.inputs.find(attribute::input);
    if (time && scene_.at(time->source).type->name != "time") return fail("a time warp of " + name(source));
    Operation o;
    o.kind = Kind::curve;
    o.curve = source.curve.get();
    return add(o);
  }

  Result track(const Node& source, AttributeId component) {
    Operation o;
    o.kind = Kind::track;
    o.track = source.track.get();
    o.component = static_cast<std::uint8_t>(component);
    return add(o);
  }

  Result converted(const Node& source) {
    const Result in = plug(source, attribute::input);
    if (!in) return in;
    Operation o;
    o.kind = Kind::scale;
    o.number = static_value(scene_, source, attribute::conversionFactor);
    o.arguments[0] = *in;
    return add(o);
  }

  Result blended(const Node& source, AttributeId out) {
    const AttributeId k = out - part(compound_of(out), 0);
    const bool rotates = compound_of(out) == attribute::outRotate;
    const AttributeId first = part(rotates ? attribute::inRotate1 : attribute::inTranslate1, k);
    const AttributeId second = part(rotates ? attribute::inRotate2 : attribute::inTranslate2, k);
    const double mode = static_value(scene_, source, rotates ? attribute::rotateMode : attribute::translateXMode + k);
    const bool fixed_weight = scene_.driver(source, attribute::weight) == nullptr;
    const double fixed = static_value(scene_, source, attribute::weight);
    if (mode == 1.0 || (mode == 0.0 && fixed_weight && fixed == 0.0)) return plug(source, first);
    if (mode == 2.0 || (fixed_weight && fixed == 1.0)) return plug(source, second);
    const Result weight = plug(source, attribute::weight);
    if (!weight) return weight;
    if (rotates && static_value(scene_, source, attribute::rotInterpolation) != 0.0)
      return rotation_blended(source, k, *weight);
    const Result a = plug(source, first);
    const Result b = a ? plug(source, second) : a;
    if (!b) return b;
    Operation o;
    o.kind = Kind::blend;
    o.arguments = {*a, *b, *weight};
    return add(o);
  }

  Result rotation_blended(const Node& source, AttributeId component, std::uint16_t weight) {
    Operation o;
    o.kind = Kind::rotation_blend;
    o.component = static_cast<std::uint8_t>(component);
    for (AttributeId k = 0; k < 6; ++k) {
      const Result in = plug(source, part(k < 3 ? attribute::inRotate1 : attribute::inRotate2, k % 3));
      if (!in) return in;
      o.arguments[k] = *in;
    }
    const Result order = plug(source, attribute::blendRotateOrder);
    if (!order) return order;
    o.arguments[6] = weight;
    o.arguments[7] = *order;
    return add(o);
  }

  Result add(const Operation& operation) {
    if (expression_.operations.size() >= Expression::kMaxOperations) return fail("too many nodes at once");
    expression_.operations.push_back(operation);
    return static_cast<std::uint16_t>(expression_.operations.size() - 1);
  }

  std::string name(const Node& node) const { return node.type->name + " " + scene_.unique_name(node); }
  Result fail(const Node& source, AttributeId attribute) {
    return fail(name(source) + " (" + scene_.attributes.text(attribute) + ")");
  }
  Result fail(std::string text) {
    why = std::move(text);
    return std::nullopt;
  }

  const Graph& scene_;
  Expression& expression_;
  std::vector<std::pair<NodeId, AttributeId>> path_;
  std::vector<std::pair<std::pair<NodeId, AttributeId>, std::uint16_t>> done_;
};

}  // namespace

std::string compile_driver(const Graph& scene, NodeId node, AttributeId attribute, Expression& expression) {
  expression.operations.clear();
  Compiler compiler(scene, expression);
  const auto result = compiler.plug(scene.at(node), attribute);
  if (!result) return compiler.why;
  // The result of a plug met before is not the last operation.
  if (*result + std::size_t{1} < expression.operations.size()) expression.operations.resize(*result + std::size_t{1});
  return {};
}

void refresh_values(const Graph& scene, Expression& expression) {
  for (Operation& o : expression.operations)
    if (o.kind == Kind::value) o.number = static_value(scene, scene.at(o.node), o.attribute);
}

double Expression::evaluate(double frame) const {
  std::array<double, kMaxOperations> result;
  for (std::size_t i = 0; i < operations.size(); ++i) {
    const Operation& o = operations[i];
    const auto argument = [&](std::size_t k) { return result[o.arguments[k]]; };
    switch (o.kind) {
      case Kind::value:
        result[i] = o.number;
        break;
      case Kind::curve:
        result[i] = o.curve->evaluate(frame);
        break;
      case Kind::track:
        result[i] = o.track->at(frame)[o.component];
        break;
      case Kind::scale:
        result[i] = o.number * argument(0);
        break;
      case Kind::blend:
        result[i] = (1.0 - argument(2)) * argument(0) + argument(2) * argument(1);
        break;
      case Kind::rotation_blend:
        result[i] = blend_rotations({argument(0), argument(1), argument(2)}, {argument(3), argument(4), argument(5)},
                                    argument(6), argument(7))[o.component];
        break;
    }
  }
  return result[operations.size() - 1];
}

}  // namespace vantorelix::standalone
