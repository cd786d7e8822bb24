// The host type codes the export looks up once per save.
#pragma once

#include "host/item.h"

struct ItemTypes {
  VxTypeCode scene, locator, groupLocator, camera, light, sunLight, pointLight, spotLight, areaLight,
      lightMaterial, mesh, meshInst, triSurf, morphDeform, txtrLocator, polyRender, mask, advancedMaterial,
      imageMap, deformGroup, scale, rotation, translation, transform, shear, ikFullBody, actionclip, group,
      unityShader, unrealShader, replicator, glTFShader;

  // Looks every type name up through the host, in a fixed order.
  static ItemTypes lookup();
};
