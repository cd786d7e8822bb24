#include "load_options.h"

#include <iterator>
#include <memory>
#include <new>

#include "host/vx_host.h"

namespace loadopts {
namespace {

constexpr VxPopChoice kSampleRateChoices[] = {{0, "1x FPS"}, {1, "2x FPS"}, {-1, nullptr}};

constexpr VxPopChoice kUnitChoices[] = {
    {0, "Use FBX file units"}, {1, "Millimeters [mm]"}, {2, "Decimeters [dm]"}, {3, "Centimeters [cm]"},
    {4, "Meters [m]"},         {5, "Kilometers [km]"},  {6, "Inches"},          {7, "Feet"},
    {8, "Yards"},              {9, "Miles"},            {-1, nullptr}};

constexpr CVxAttrDesc kAttributes[] = {
    {"mergeWithExistingItems", VXATTR_BOOLEAN, nullptr},
    {"loadGeometry", VXATTR_BOOLEAN, nullptr},
    {"loadNormals", VXATTR_BOOLEAN, nullptr},
    {"loadMeshSmoothing", VXATTR_BOOLEAN, nullptr},
    {"loadBlendShapes", VXATTR_BOOLEAN, nullptr},
    {"loadPolygonParts", VXATTR_BOOLEAN, nullptr},
    {"loadSelectionSets", VXATTR_BOOLEAN, nullptr},
    {"loadMaterials", VXATTR_BOOLEAN, nullptr},
    {"invertMatTranAmt", VXATTR_BOOLEAN, nullptr},
    {"useMatTranColAsTranAmt", VXATTR_BOOLEAN, nullptr},
    {"changeTextureEffect", VXATTR_BOOLEAN, nullptr},
    {"loadCameras", VXATTR_BOOLEAN, nullptr},
    {"loadLights", VXATTR_BOOLEAN, nullptr},
    {"loadAnimation", VXATTR_BOOLEAN, nullptr},
    {"loadSampleAnimation", VXATTR_BOOLEAN, nullptr},
    {"loadSampleAnimationRate", VXATTR_INTEGER, kSampleRateChoices},
    {"globalScalingFactor", VXATTR_FLOAT, nullptr},
    {"importUnits", VXATTR_INTEGER, kUnitChoices},
};

// A field per attribute, bound by index, with the reader and writer of its type.
constexpr CVxRecordField boolean(unsigned attr) { return {attr, cvxReadBoolean, cvxWriteBoolean}; }
constexpr CVxRecordField choice(unsigned attr) { return {attr, cvxReadInteger, cvxWriteInteger}; }
constexpr CVxRecordField number(unsigned attr) { return {attr, cvxReadFloat, cvxWriteFloat}; }

constexpr CVxRecordField kFields[] = {
    boolean(0),   // mergeWithExistingItems
    boolean(1),   // loadGeometry
    boolean(7),   // loadMaterials
    boolean(11),  // loadCameras
    boolean(12),  // loadLights
    boolean(3),   // loadMeshSmoothing
    boolean(4),   // loadBlendShapes
    boolean(5),   // loadPolygonParts
    boolean(6),   // loadSelectionSets
    boolean(13),  // loadAnimation
    boolean(14),  // loadSampleAnimation
    choice(15),   // loadSampleAnimationRate
    boolean(2),   // loadNormals
    boolean(8),   // invertMatTranAmt
    boolean(9),   // useMatTranColAsTranAmt
    boolean(10),  // changeTextureEffect
    number(16),   // globalScalingFactor
    choice(17),   // importUnits
};

const CVxRecord kRecord(kAttributes, static_cast<unsigned>(std::size(kAttributes)), kFields,
                        static_cast<unsigned>(std::size(kFields)));

// Lives until the module is unloaded, so the host's pointer to it stays valid.
std::unique_ptr<LoadOptionSet> gOptionSet;

}  // namespace

const CVxAttrDesc* attributes() { return kAttributes; }
unsigned attributeCount() { return static_cast<unsigned>(std::size(kAttributes)); }
const CVxRecord& record() { return kRecord; }

}  // namespace loadopts

LoadOptionSet::LoadOptionSet() : CVxAttributes(loadopts::attributes(), loadopts::attributeCount()) {}

LoadOptionSet* LoadOptionSet::shared() {
  if (!loadopts::gOptionSet) {
    loadopts::gOptionSet.reset(new (std::nothrow) LoadOptionSet());
    if (!loadopts::gOptionSet) return nullptr;
    CVxHost::registerLoaderOptions(loadopts::kLoaderName, *loadopts::gOptionSet);
  }
  return loadopts::gOptionSet.get();
}

bool LoadOptionSet::built() { return loadopts::gOptionSet != nullptr; }

LoadOptionsCmd::LoadOptionsCmd()
    : CVxCommandServer(loadopts::attributes(), loadopts::attributeCount()), shared_(LoadOptionSet::shared()) {
  if (!shared_) throw std::bad_alloc();
  values().assign(shared_->values());
}

VxResult LoadOptionsCmd::cmd_Execute() {
  shared_->values().assign(values());
  return VXR_OK;
}
