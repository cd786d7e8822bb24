#!/usr/bin/env python3
"""Writes the save fuzzer's seed corpus: make_seeds.py OUT_DIR [EXAMPLES_DIR]

Each seed is one settings byte (see save_fuzzer.cpp) followed by a scene file:
the examples under several settings, and small scenes with meshes, cameras,
locator stacks, links, actions and item lists.
"""
import json
import pathlib
import sys

GLB_WHOLE = 0x00
GLTF_WHOLE = 0x01
GLB_SELECTION = 0x02
GLTF_ITEM_LIST = 0x05
GLB_WHOLE_32BIT_TANGENTS = 0x18
GLTF_WHOLE_EVERY_ACTION = 0x41
GLB_WHOLE_NO_ANIMATION_ACTIVE_ACTION = 0xA0

QUAD_MESH = {
    "points": [[0, 0, 0], [1, 0, 0], [1, 1, 0], [0, 1, 0]],
    "polygons": [[0, 1, 2, 3]],
}

SCENES = {
    "triangle": {"items": [{"name": "Tri", "type": "mesh",
                            "mesh": {"points": [[0, 0, 0], [1, 0, 0], [0, 1, 0]], "polygons": [[0, 1, 2]]}}],
                 "selection": ["Tri"]},
    "mesh_maps": {"items": [{"name": "Quad", "type": "mesh", "position": [1, 2, 3], "mesh": {
        **QUAD_MESH,
        "materials": ["Red"],
        "smoothingAngle": 30,
        "maps": [
            {"type": "TXUV", "name": "uv0", "points": [[0, 0], [1, 0], [1, 1], None],
             "corners": [{"polygon": 0, "point": 3, "value": [0, 1]}]},
            {"type": "NORM", "name": "n", "points": [[0, 0, 1]] * 4},
            {"type": "RGB ", "name": "c", "points": [[1, 0, 0], [0, 1, 0], [0, 0, 1], [1, 1, 1]]},
            {"type": "RGBA", "name": "a", "points": [[1, 0, 0, 1]] * 4},
            {"type": "TBAS", "name": "t", "points": [[1, 0, 0, 0, 1, 0]] * 4},
            {"type": "WGHT", "name": "w", "points": [0.5, 1, None, 0]},
        ]}}]},
    "concave_and_instance": {"items": [
        {"name": "L", "type": "triSurf", "id": "shape", "mesh": {
            "points": [[0, 0, 0], [2, 0, 0], [2, 1, 0], [1, 1, 0], [1, 2, 0], [0, 2, 0]],
            "polygons": [[0, 1, 2, 3, 4, 5]], "materials": ["M"]}},
        {"name": "Copy", "type": "meshInst", "source": "shape", "rotation": [0, 90, 0]},
        {"name": "CopyOfCopy", "type": "meshInst", "source": "Copy", "scale": [2, 2, 2]},
    ]},
    "cameras": {"scene": {"channels": {"fps": 30, "currentS": 0, "currentE": 2}},
                "items": [
                    {"name": "Cam", "type": "camera", "position": [0, 1, 5], "rotation": [-10, 0, 0],
                     "channels": {"focalLen": 0.035, "apertureX": 0.036, "apertureY": 0.024,
                                  "clipNear": 0.1, "clipFar": 100},
                     "actions": {"edit": {"focalLen": 0.05}}},
                    {"name": "Render", "type": "polyRender", "channels": {"resX": 640, "resY": 480}},
                ],
                "selection": ["Cam"]},
    "locator_stack": {"items": [{"name": "Door", "type": "locator", "position": [2, 0, 0],
                                 "rotation": [0, 75, 0], "rotationOrder": "ZXY",
                                 "rotationPivot": [-0.45, 0, 0], "scalePivot": [0, 1, 0],
                                 "rotationOffset": [0, 0, 1], "scaleOffset": [1, 0, 0],
                                 "preRotation": [5, 0, 0], "postRotation": [0, 0, 5],
                                 "scale": [1, 1.1, 1],
                                 "children": [{"name": "Knob", "type": "groupLocator", "position": [0.4, 1, 0]}]}],
                      "selection": ["Door/Rotation", "Knob"]},
    "transforms_list": {"items": [{"name": "Rig", "type": "locator", "transforms": [
        {"type": "scale", "name": "Scale", "main": True, "values": [1, 2, 1]},
        {"type": "shear", "name": "Lean", "values": [0.2, 0, 0]},
        {"type": "rotation", "name": "Rotation", "main": True, "values": [0, 90, 0], "order": "YXZ",
         "actions": {"edit": {"rot.Y": 0.5}}},
        {"type": "transform", "name": "Mount", "position": [0, 1, 0], "rotation": [0, 0, 45], "order": "ZYX"},
        {"type": "translation", "name": "Position", "main": True, "values": [3, 0, 0], "id": "rigpos"},
    ]}], "itemList": ["Rig"]},
    "links": {"items": [
        {"name": "Crane", "type": "locator", "position": [0, 2, 0]},
        {"name": "Cam", "type": "camera", "position": [0, 0, 3]},
        {"name": "A", "type": "locator"},
        {"name": "B", "type": "locator", "channels": {"visible": 1}},
    ], "links": [
        {"from": "Crane.worldMatrix", "to": "Cam.parentMatrix"},
        {"from": "A/Position.pos.X", "to": "B/Position.pos.Y"},
        {"from": "A.visible", "to": "B/Rotation.rot.Z"},
    ], "selection": ["Cam", "B"]},
    "actions_and_keys": {"items": [
        {"name": "walk", "type": "actionclip"},
        {"name": "run", "type": "actionclip"},
        {"name": "Body", "type": "mesh", "mesh": QUAD_MESH,
         "actions": {"walk": {"visible": 1}, "edit": {"visible": 0}},
         "children": [{"name": "Arm", "type": "locator", "position": [1, 0, 0]}]},
        {"name": "Sun", "type": "sunLight", "channels": {"radiance": 2, "color.R": 0.5}},
        {"name": "Spot", "type": "spotLight", "channels": {"cone": 0.3}},
        {"name": "Shader", "type": "advancedMaterial"},
        {"name": "Mask", "type": "mask", "channels": {"ptag": "Red", "ptyp": "Material"}},
        {"name": "Image", "type": "imageMap", "channels": {"effect": "diffColor"}},
        {"name": "Crowd", "type": "actor"},
    ], "time": 0.5, "selection": ["Body", "Arm"]},
    "deep_hierarchy": {"items": [
        {"name": "L0", "type": "locator", "position": [1, 0, 0], "children": [
            {"name": "L1", "type": "locator", "rotation": [0, 0, 90], "children": [
                {"name": "L2", "type": "locator", "scale": [2, 2, 2], "children": [
                    {"name": "L3", "type": "mesh", "mesh": QUAD_MESH}]}]}]},
    ], "itemList": ["L0", "L2"], "selection": ["L3"]},
    # References resolve by trying each slash; a few here let the fuzzer grow more.
    "slashed_references": {"items": [{"name": "a/b", "type": "locator", "children": [
        {"name": "c/d/e", "type": "locator", "rotation": [0, 10, 0]}]}],
        "selection": ["a/b/Rotation", "c/d/e/Rotation"], "itemList": ["a/b"],
        "links": [{"from": "a/b/Position.pos.X", "to": "c/d/e/Position.pos.Y"}]},
    "matrix_channels": {"items": [{"name": "M", "type": "locator", "transforms": []},
                                  {"name": "N", "type": "locator", "scale": [0, 1, 1]}],
                        "links": [{"from": "N.localMatrix", "to": "M.parentMatrix"}]},
}

SCENE_SETTINGS = [GLB_WHOLE, GLTF_WHOLE, GLB_SELECTION, GLTF_ITEM_LIST, GLB_WHOLE_32BIT_TANGENTS,
                  GLTF_WHOLE_EVERY_ACTION, GLB_WHOLE_NO_ANIMATION_ACTIVE_ACTION]


def write_seed(out, name, settings, text):
    (out / f"{name}-{settings:02x}").write_bytes(bytes([settings]) + text)


def main():
    if len(sys.argv) not in (2, 3):
        sys.exit(__doc__.strip().splitlines()[0])
    out = pathlib.Path(sys.argv[1])
    examples = pathlib.Path(sys.argv[2]) if len(sys.argv) == 3 else pathlib.Path(__file__).parent.parent / "examples"
    out.mkdir(parents=True, exist_ok=True)
    for example in sorted(examples.glob("*.json")):
        for settings in (GLB_WHOLE, GLTF_WHOLE, GLB_SELECTION, GLTF_ITEM_LIST, GLB_WHOLE_32BIT_TANGENTS):
            write_seed(out, "example-" + example.stem, settings, example.read_bytes())
    for name, scene in SCENES.items():
        # One line, as most tools write JSON; the settings vary with the scene.
        text = json.dumps(scene, separators=(",", ":")).encode()
        for settings in SCENE_SETTINGS[: 3 + len(name) % 4]:
            write_seed(out, name, settings, text)


if __name__ == "__main__":
    main()
