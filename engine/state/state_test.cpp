#include "engine/state/state.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <set>

#include "engine/sampling/position_sampling.h"
#include "engine/state/constants.h"
#include "host/error.h"
#include "tests/support/engine_test.h"

namespace vantorelix {
namespace {

using support::EngineTest;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

class State : public EngineTest {
 protected:
  void expect_initial() {
    EXPECT_TRUE(_REGISTRY.empty());
    EXPECT_FALSE(_CB_ID.has_value());
    EXPECT_FALSE(_REBUILDING);
    EXPECT_EQ(_GEN, 0);
    EXPECT_FALSE(_PENDING);
    EXPECT_EQ(_WORK, nullptr);
    EXPECT_EQ(_LAST_EDIT, 0.0);
    EXPECT_TRUE(_MSG_HANDLER.is_none());
  }
};

TEST_F(State, IsEmptyRightAfterLoading) { expect_initial(); }

TEST_F(State, StartsAnewOnReload) {
  const auto* registry = &_REGISTRY;
  _REGISTRY.set("vlx_ball_viz", std::make_shared<Settings>());
  _CB_ID = host::Value(3);
  _REBUILDING = true;
  _GEN = 7;
  _PENDING = true;
  _WORK = std::make_shared<WorkRecord>();
  _LAST_EDIT = 12.5;
  _MSG_HANDLER = 1;
  PLUGIN_FILE = "elsewhere";
  initialise();
  expect_initial();
  EXPECT_EQ(PLUGIN_FILE, "Vantorelix_plugin.py");
  EXPECT_EQ(registry, &_REGISTRY);
}

TEST_F(State, BindsTheHandlesItWasGiven) {
  const Handles handles = fake.handles();
  _initialise(handles);
  EXPECT_EQ(cmds, handles.cmds);
  EXPECT_EQ(om, handles.om);
  EXPECT_EQ(oma, handles.oma);
  EXPECT_EQ(interpreter, handles.interpreter);
}

TEST_F(State, ThePluginLiesBesideTheModuleWhereverTheCurrentFolderIs) {
  const std::filesystem::path here = std::filesystem::current_path();
  const std::filesystem::path folder = here.root_path() / "opt" / "tools";
  fake.file = (folder / "Vantorelix_engine.py").string();
  initialise();
  EXPECT_EQ(PLUGIN_FILE, (folder / "Vantorelix_plugin.py").string());
  fake.file = "Vantorelix_engine.py";  // found relative to the current folder, and fixed from then on
  initialise();
  EXPECT_EQ(PLUGIN_FILE, (here / "Vantorelix_plugin.py").string());
}

TEST(Constants, HaveTheirPublishedValues) {
  EXPECT_EQ(SCRIPT_NAME, "Vantorelix");
  EXPECT_EQ(SCRIPT_VERSION, "v1_04");
  EXPECT_EQ(PLUGIN_BASENAME, "Vantorelix_plugin");
  EXPECT_EQ(NODE_TYPE, "vantorelix");
  EXPECT_EQ(TRAIL_ROOT, "vantorelixs_grp");
  EXPECT_EQ(OPT_SAMPLES, "Vantorelix_samplesPerFrame");
  EXPECT_EQ(OPT_LINE_WIDTH, "Vantorelix_lineWidth");
  EXPECT_EQ(OPT_POINT_SIZE, "Vantorelix_pointSize");
  EXPECT_EQ(OPT_SHOW_LINE, "Vantorelix_showLine");
  EXPECT_EQ(OPT_SHOW_DOTS, "Vantorelix_showDots");
  EXPECT_EQ(OPT_XRAY, "Vantorelix_xrayMode");
  EXPECT_EQ(OPT_COLOR_MODE, "Vantorelix_colorMode");
  EXPECT_EQ(_CHUNK_BUDGET, 0.008);
  EXPECT_EQ(_DEBOUNCE, 0.2);
  EXPECT_EQ(_CREATE_BUDGET, 0.15);
  EXPECT_EQ(_SPACING_RED_MULT, 2.5);
  EXPECT_THAT(_VIEWPORT_TRAIL_FLAGS, ElementsAre("motionTrails"));
}

TEST(ExportList, HoldsPrivateNamesAndHandlesButNoDoubleUnderscores) {
  EXPECT_THAT(__all__, Contains("_REGISTRY"));
  EXPECT_THAT(__all__, Contains("cmds"));
  EXPECT_THAT(__all__, Contains("_on_anim_edit"));
  EXPECT_THAT(__all__, Not(Contains(StartsWith("__"))));
}

TEST(ExportList, NamesNothingTwice) {
  const std::set<std::string> names(__all__.begin(), __all__.end());
  EXPECT_EQ(names.size(), __all__.size());
}

TEST(ExportList, IsInDefinitionOrder) {
  const std::vector<std::string> in_order = {"os",
                                             "sys",
                                             "time",
                                             "bisect_left",
                                             "bisect_right",
                                             "cmds",
                                             "om",
                                             "oma",
                                             "SCRIPT_NAME",
                                             "OPT_SAMPLES",
                                             "_REGISTRY",
                                             "_MSG_HANDLER",
                                             "_CHUNK_BUDGET",
                                             "_RAMP_STOPS",
                                             "_msg",
                                             "_opt_get_int",
                                             "_world_pos_at",
                                             "_smooth",
                                             "_catmull_point",
                                             "_color_ramp",
                                             "_compute_trail_data",
                                             "_push_data_to_viz",
                                             "create_trail",
                                             "clear_trails",
                                             "convert_to_nurbs",
                                             "_rebuild_step",
                                             "_schedule_rebuild",
                                             "_on_anim_edit",
                                             "apply_prefs_to_existing_trails",
                                             "set_color_mode",
                                             "_ensure_plugin",
                                             "pellark_entry"};
  auto place = __all__.begin();
  for (const std::string& name : in_order) {
    place = std::find(place, __all__.end(), name);
    ASSERT_NE(place, __all__.end()) << name;
  }
}

TEST(OrderedMap, KeepsTheOrderOfInsertion) {
  OrderedMap<int> map;
  map.set("b", 1);
  map.set("a", 2);
  map.set("b", 3);  // keeps its place
  EXPECT_THAT(*map.snapshot(), ElementsAre(std::pair<std::string, int>("b", 3), std::pair<std::string, int>("a", 2)));
  EXPECT_TRUE(map.erase("b"));
  EXPECT_FALSE(map.erase("b"));
  map.set("b", 4);  // goes to the end
  EXPECT_THAT(*map.snapshot(), ElementsAre(std::pair<std::string, int>("a", 2), std::pair<std::string, int>("b", 4)));
  EXPECT_EQ(map.get("c", 9), 9);
  EXPECT_EQ(map.get("a", 9), 2);
  map.clear();
  EXPECT_TRUE(map.empty());
}

TEST(OrderedMap, FindsFewKeysAndMany) {
  OrderedMap<int> map;
  const auto key = [](int i) { return "key " + std::to_string(i); };
  for (int i = 0; i < 40; ++i) {
    map.set(key(i), i);
    for (int k = 0; k <= i; ++k) ASSERT_EQ(map.at(key(k)), k);
    ASSERT_FALSE(map.contains(key(i + 1)));
  }
  for (int i = 0; i < 40; ++i) {
    ASSERT_TRUE(map.erase(key(i)));
    ASSERT_FALSE(map.contains(key(i)));
    for (int k = i + 1; k < 40; ++k) ASSERT_EQ(map.get(key(k), -1), k);
  }
  map.set(key(7), 8);
  EXPECT_EQ(map.size(), 1u);
  EXPECT_EQ(map.at(key(7)), 8);
}

TEST(OrderedMap, ASnapshotOutlivesEveryChangeAndIsSharedUntilThen) {
  OrderedMap<int> map;
  map.set("a", 1);
  const auto before = map.snapshot();
  EXPECT_EQ(map.snapshot(), before);
  map.set("b", 2);
  EXPECT_THAT(*before, ElementsAre(std::pair<std::string, int>("a", 1)));
  const auto grown = map.snapshot();
  EXPECT_THAT(*grown, ElementsAre(std::pair<std::string, int>("a", 1), std::pair<std::string, int>("b", 2)));
  map.erase("a");
  EXPECT_THAT(*map.snapshot(), ElementsAre(std::pair<std::string, int>("b", 2)));
  map.clear();
  EXPECT_THAT(*map.snapshot(), IsEmpty());
  EXPECT_THAT(*grown, SizeIs(2));
}

TEST(WorkItems, AreMadeInTheOrderOfTheTrailsWhicheverIsAskedForFirst) {
  Registry registry;
  for (const char* name : {"a", "b", "c"}) registry.set(name, std::make_shared<Settings>());
  WorkItems items(registry.snapshot());
  EXPECT_EQ(items.size(), 3u);
  EXPECT_EQ(items.at(2)->viz, "c");
  EXPECT_EQ(items.at(0)->viz, "a");
  EXPECT_EQ(items.at(1)->settings, registry.at("b"));
  const auto first = items.at(0);
  EXPECT_EQ(items.at(0), first);
  EXPECT_EQ(WorkItems().size(), 0u);
}

TEST(WorkItems, AnItemLivesForAsLongAsAnybodyHoldsIt) {
  Registry registry;
  registry.set("a", std::make_shared<Settings>());
  auto items = std::make_unique<WorkItems>(registry.snapshot());
  const auto held = items->at(0);
  held->pos->push_back({1.0, 2.0, 3.0});
  items.reset();
  free_discarded_items(100);
  EXPECT_EQ(held.use_count(), 1);
  EXPECT_EQ(held->viz, "a");
  EXPECT_EQ(held->pos->front(), (Position{1.0, 2.0, 3.0}));
}

// --- what discarded lists leave behind -------------------------------------------------------------------------------

class DiscardedItems : public ::testing::Test {
 protected:
  DiscardedItems() { free_discarded_items(1000); }  // of the tests before

  // Discards a list of `count` items; the last of them was made last.
  void discard(int count) {
    Registry registry;
    for (int i = 0; i < count; ++i) registry.set("trail " + std::to_string(i), std::make_shared<Settings>());
    WorkItems items(registry.snapshot());
    for (int i = 0; i < count; ++i) {
      settings.push_back(registry.at("trail " + std::to_string(i)));
      left.push_back(items.at(static_cast<std::size_t>(i)));
    }
  }
  auto living() const {
    return std::count_if(left.begin(), left.end(), [](const auto& item) { return !item.expired(); });
  }
  auto trails_known() const {
    return std::count_if(settings.begin(), settings.end(), [](const auto& known) { return !known.expired(); });
  }

  std::vector<std::weak_ptr<WorkItem>> left;
  std::vector<std::weak_ptr<Settings>> settings;
};

TEST_F(DiscardedItems, AreFreedAFewAtATime) {
  discard(5);
  EXPECT_EQ(living(), 5);
  free_discarded_items(2);
  EXPECT_EQ(living(), 3);
  free_discarded_items(3);
  EXPECT_EQ(living(), 0);
}

TEST_F(DiscardedItems, TakeWhatIsKnownOfTheirTrailsAlongPieceByPiece) {
  discard(4);
  free_discarded_items(4);
  EXPECT_EQ(trails_known(), 4);
  free_discarded_items(3);
  EXPECT_EQ(trails_known(), 1);
  free_discarded_items(1);
  EXPECT_EQ(trails_known(), 0);
}

TEST_F(DiscardedItems, OfSeveralListsAreFreedOneListAfterTheOther) {
  discard(2);
  discard(2);
  free_discarded_items(100);
  EXPECT_EQ(living(), 0);
  free_discarded_items(100);  // nothing is left
}

// Letting go of an item may run the host's code, and that may step, and free more.
TEST_F(DiscardedItems, MayBeFreedWhileOneOfThemGoes) {
  struct Freeing : Sampler {
    ~Freeing() override { free_discarded_items(1); }
    Position operator()(double) override { return {}; }
  };
  discard(3);
  for (const auto& item : left) item.lock()->sampler = std::make_shared<Freeing>();
  free_discarded_items(1);
  EXPECT_EQ(living(), 0);
}

// --- values whose end looks at where they were -------------------------------------------------------------------

// Runs `last` when it goes.
struct Ending : host::Object {
  explicit Ending(std::function<void()> run) : last(std::move(run)) {}
  ~Ending() override { last(); }
  std::string text() const override { return "ending"; }
  std::function<void()> last;
};

host::Value ending(std::function<void()> last) { return host::Value(std::make_shared<Ending>(std::move(last))); }

TEST(OrderedMap, IsWholeWhenWhatItLetGoLooksAtIt) {
  Settings map;
  std::vector<std::string> seen;
  const auto look = [&] { seen.push_back(std::to_string(map.size()) + " " + map.get("a").text()); };
  map.set("a", ending(look));
  map.set("a", 1);
  map.set("a", ending(look));
  map.erase("a");
  map.set("a", ending(look));
  map.set("b", 2);
  map.clear();
  EXPECT_THAT(seen, ElementsAre("1 1", "0 None", "0 None"));
}

TEST(OrderedMap, MayBeFilledByWhatItLetsGo) {
  Settings map;
  map.set("a", ending([&] { map.set("b", "from the end of a"); }));
  map.clear();
  EXPECT_EQ(map.get("b").text(), "from the end of a");
}

TEST_F(State, IsNewWhenWhatAReloadLetsGoLooksAtIt) {
  auto settings = std::make_shared<Settings>();
  std::string seen;
  settings->set("note", ending([&] { seen = std::to_string(_REGISTRY.size()) + " " + std::to_string(_GEN); }));
  _REGISTRY.set("vlx_ball_viz", std::move(settings));
  _GEN = 7;
  initialise();
  EXPECT_EQ(seen, "0 0");
}

TEST(OrderedMap, AMissingKeyIsNamedInQuotes) {
  const Settings settings;
  try {
    settings.at("samples_per_frame");
    FAIL() << "no error";
  } catch (const host::Error& e) {
    EXPECT_EQ(e.kind(), host::ErrorKind::key);
    EXPECT_STREQ(e.what(), "'samples_per_frame'");
  }
}

}  // namespace
}  // namespace vantorelix
