// Reads a .gltf or .glb back with an independent glTF library and prints
// what a viewer would see: every node with its world matrix, every mesh
// with its primitives' indices and attribute values, every skin with its
// joints and inverse bind matrices, every camera.
//   node read.mjs FILE
import { Logger, NodeIO } from '@gltf-transform/core';

// Only errors: the warning about an extension it does not read
// (KHR_materials_unlit) would land in the JSON printed below.
const io = new NodeIO().setLogger(new Logger(Logger.Verbosity.ERROR));
const document = await io.read(process.argv[2]);
const root = document.getRoot();

const meshes = root.listMeshes();
const cameras = root.listCameras();
const materials = root.listMaterials();
const skins = root.listSkins();

const out = {
  nodes: root.listNodes().map((node) => ({
    name: node.getName(),
    world: Array.from(node.getWorldMatrix()),
    local: Array.from(node.getMatrix()),
    parent: node.getParentNode() ? node.getParentNode().getName() : null,
    children: node.listChildren().map((child) => child.getName()),
    mesh: node.getMesh() ? meshes.indexOf(node.getMesh()) : null,
    camera: node.getCamera() ? cameras.indexOf(node.getCamera()) : null,
    skin: node.getSkin() ? skins.indexOf(node.getSkin()) : null,
  })),
  scenes: root.listScenes().map((scene) => scene.listChildren().map((node) => node.getName())),
  meshes: meshes.map((mesh) => ({
    primitives: mesh.listPrimitives().map((primitive) => {
      const attributes = {};
      for (const semantic of primitive.listSemantics()) {
        attributes[semantic] = Array.from(primitive.getAttribute(semantic).getArray());
      }
      const indices = primitive.getIndices();
      return {
        mode: primitive.getMode(),
        material: primitive.getMaterial() ? materials.indexOf(primitive.getMaterial()) : null,
        indices: indices ? Array.from(indices.getArray()) : null,
        indexComponentType: indices ? indices.getComponentType() : null,
        attributes,
      };
    }),
  })),
  skins: skins.map((skin) => ({
    name: skin.getName(),
    joints: skin.listJoints().map((joint) => joint.getName()),
    skeleton: skin.getSkeleton() ? skin.getSkeleton().getName() : null,
    inverseBindMatrices: skin.getInverseBindMatrices() ? Array.from(skin.getInverseBindMatrices().getArray()) : [],
  })),
  cameras: cameras.map((camera) => ({
    name: camera.getName(),
    type: camera.getType(),
    znear: camera.getZNear(),
    yfov: camera.getYFov(),
  })),
};
process.stdout.write(JSON.stringify(out));
