#!/usr/bin/env python3
"""Writes hostile scene files for the robustness suite.

make_scenes.py --list            the case names, one a line
make_scenes.py OUT_DIR NAME...   writes OUT_DIR/NAME.json for each case
"""
import json
import pathlib
import sys

CASES = {}
HELPERS = {}


def case(function):
    CASES[function.__name__] = function
    return function


def helper(function):
    """A scene the condition tests use, not a case of its own."""
    HELPERS[function.__name__] = function
    return function


def scene(items, **top):
    return json.dumps({"items": items, **top}, separators=(",", ":"))


QUAD = {"points": [[0, 0, 0], [1, 0, 0], [1, 1, 0], [0, 1, 0]], "polygons": [[0, 1, 2, 3]]}


def quad_item(name="Quad", **keys):
    return {"name": name, "type": "mesh", "mesh": QUAD, **keys}


def camera_with(**channels):
    return scene([{"name": "Cam", "type": "camera", "position": [0, 0, 5], "channels": channels}])


def grid(cells):
    """A flat grid of cells x cells quads, on one line."""
    points = [[x, 0, z] for z in range(cells + 1) for x in range(cells + 1)]
    polygons = [[z * (cells + 1) + x, (z + 1) * (cells + 1) + x, (z + 1) * (cells + 1) + x + 1,
                 z * (cells + 1) + x + 1] for z in range(cells) for x in range(cells)]
    return scene([{"name": "Grid", "type": "mesh", "mesh": {"points": points, "polygons": polygons}}])


# A small scene that saves: the destination and condition cases use it.
@case
def valid_mesh():
    return scene([quad_item(position=[0, 1, 0]), {"name": "Cam", "type": "camera", "position": [0, 0, 4]}])


# A bigger one, whose save takes enough memory and disk to run into limits.
@case
def grid_mesh():
    return grid(120)


# Two grids that save in about the same time to ".bin" files of different lengths.
@helper
def grid_60():
    return grid(60)


@helper
def grid_61():
    return grid(61)


# Big enough that address-space limits from 16 to 24 MiB fall inside the read or the export.
@helper
def big_grid_mesh():
    return grid(250)


# Wrong types.
@case
def wrong_type_items_object():
    return '{"items": {"name": "A", "type": "locator"}}'


@case
def wrong_type_name_number():
    return '{"items": [{"name": 5, "type": "locator"}]}'


@case
def wrong_type_channel_text():
    return scene([{"name": "R", "type": "polyRender", "channels": {"resX": "800"}}])


@case
def wrong_type_point_strings():
    return scene([{"name": "M", "type": "mesh", "mesh": {"points": [["0", "0", "0"]], "polygons": []}}])


@case
def wrong_type_matrix_short():
    return scene([{"name": "A", "type": "locator"}, {"name": "B", "type": "locator"}],
                 links=[{"from": "A.worldMatrix", "to": "B/Position.pos.X"}])


@case
def wrong_type_top_array():
    return "[1, 2, 3]"


# Huge and negative counts and indices.
@case
def point_index_huge():
    return scene([{"name": "M", "type": "mesh", "mesh": {"points": QUAD["points"], "polygons": [[0, 1, 18446744073709551615]]}}])


@case
def point_index_negative():
    return scene([{"name": "M", "type": "mesh", "mesh": {"points": QUAD["points"], "polygons": [[0, 1, -1]]}}])


@case
def polygon_of_many_points():
    return scene([{"name": "M", "type": "mesh",
                   "mesh": {"points": QUAD["points"], "polygons": [[0, 1, 2, 3] * 25000]}}])


@case
def resolution_out_of_range():
    return scene([{"name": "R", "type": "polyRender", "channels": {"resX": 2147483648, "resY": -2147483649}}])


@case
def frame_rate_negative_and_huge_range():
    return scene([quad_item()], scene={"channels": {"fps": -24, "currentS": -1e300, "currentE": 1e300}})


@case
def frame_rate_zero():
    return scene([quad_item()], scene={"channels": {"fps": 0}}, time=1e308)


# NaN, infinities and extremes.
@case
def number_nan_literal():
    return '{"items": [{"name": "A", "type": "locator", "position": [NaN, 0, 0]}]}'


@case
def number_overflows_to_infinity():
    return '{"items": [{"name": "A", "type": "locator", "position": [1e400, -1e400, 0]}]}'


@case
def number_zero_with_huge_exponent():
    return '{"items": [{"name": "Cam", "type": "camera", "position": [0e38, 0, 5]}]}'


@case
def number_subnormal_points():
    return scene([{"name": "M", "type": "mesh", "mesh": {
        "points": [[5e-324, 0, 0], [0, 5e-324, 0], [0, 0, 5e-324]], "polygons": [[0, 1, 2]]}}])


@case
def number_float_max_points():
    return scene([{"name": "M", "type": "mesh", "mesh": {
        "points": [[1e38, 0, 0], [-3.4e38, 1e38, 0], [0, 0, 3.5e38]], "polygons": [[0, 1, 2]]}}])


@case
def camera_tiny_aperture():
    return camera_with(apertureY=1e-50, focalLen=1)


@case
def camera_tiny_near_clip():
    return camera_with(clipNear=1e-46, clipFar=1e-45)


@case
def camera_zero_and_negative():
    return camera_with(focalLen=0, apertureX=-1, apertureY=0, clipNear=-5, clipFar=0)


@case
def pivot_huge():
    return scene([quad_item(rotationPivot=[1e308, 1e308, 1e308], scalePivot=[-1e308, 0, 0], rotation=[0, 45, 0])])


@case
def scale_zero():
    return scene([quad_item(scale=[0, 0, 0], children=[{"name": "Child", "type": "locator", "position": [1, 0, 0]}])])


@case
def rotation_huge_angles():
    return scene([quad_item(rotation=[1e300, -1e300, 1e18])])


@case
def vertex_values_extreme():
    return scene([{"name": "M", "type": "mesh", "mesh": {**QUAD, "maps": [
        {"type": "NORM", "name": "n", "points": [[0, 0, 0], [1e308, 0, 0], [0, -1e308, 0], [5e-324, 0, 0]]},
        {"type": "TXUV", "name": "uv", "points": [[1e308, -1e308], [0, 0], [1, 1], [0, 1]]},
        {"type": "RGBA", "name": "c", "points": [[-1, 2, 1e308, -1e308]] * 4},
        {"type": "TBAS", "name": "t", "points": [[0, 0, 0, 0, 0, 0]] * 4}]}}])


# Deep nesting.
@case
def nesting_children_deep():
    item = {"name": "Leaf", "type": "locator", "position": [1, 0, 0]}
    for level in range(120):
        item = {"name": f"L{level}", "type": "locator", "position": [0, 1, 0], "children": [item]}
    return scene([item])


@case
def nesting_arrays_very_deep():
    return '{"items": ' + "[" * 100000 + "]" * 100000 + "}"


@case
def nesting_objects_very_deep():
    return '{"scene": ' + '{"a":' * 100000 + "1" + "}" * 100000 + "}"


@case
def nesting_unclosed():
    return '{"items": [' + "[" * 50000


# Odd names and text.
@case
def name_lone_surrogate():
    return '{"items": [{"name": "A\\udc00", "type": "locator"}]}'


@case
def name_nul():
    return '{"items": [{"name": "A\\u0000B", "type": "locator"}]}'


@case
def name_surrogate_pair_and_controls():
    return '{"items": [{"name": "\\ud83d\\ude00 \\t\\n\\u001f\\"\\\\/", "type": "locator"}]}'


@case
def name_very_long():
    return scene([quad_item(name="N" * 1_000_000)])


@case
def name_invalid_utf8():
    return b'{"items": [{"name": "A\xff\xfe\xc0\x80", "type": "locator"}]}'


@case
def text_ends_inside_utf8_character():
    return b'{"items": [{"name": "\xe2'


@case
def byte_order_mark():
    return b"\xef\xbb\xbf" + valid_mesh().encode()


@case
def empty_file():
    return ""


@case
def binary_garbage():
    return bytes(range(256)) * 4


@case
def nul_inside_json():
    return b'{"items": [\x00]}'


# Broken links and references.
@case
def link_to_missing_item():
    return scene([{"name": "A", "type": "locator"}], links=[{"from": "A/Position.pos.X", "to": "Ghost.pos.X"}])


@case
def link_loop():
    return scene([{"name": "A", "type": "locator"}, {"name": "B", "type": "locator"}],
                 links=[{"from": "A/Position.pos.X", "to": "B/Position.pos.X"},
                        {"from": "B/Position.pos.X", "to": "A/Position.pos.X"}])


@case
def link_matrix_cycle_through_parent():
    return scene([{"name": "P", "type": "locator", "children": [{"name": "C", "type": "mesh", "mesh": QUAD}]}],
                 links=[{"from": "C.worldMatrix", "to": "P.parentMatrix"}])


@case
def link_without_channel():
    return scene([{"name": "A", "type": "locator"}], links=[{"from": "A", "to": "."}])


@case
def instance_source_loop():
    return scene([{"name": "A", "type": "meshInst", "source": "B"}, {"name": "B", "type": "meshInst", "source": "A"}])


@case
def selection_of_missing_item():
    return scene([quad_item()], selection=["Quad", "Nobody"])


@case
def many_slashes_selection():
    return scene([quad_item()], selection=["a" + "/" * 40 + "b"])


@case
def many_slashes_link():
    return scene([quad_item()], links=[{"from": "/" * 40 + ".pos.X", "to": "Quad/Position.pos.X"}])


@case
def many_slashes_item_list():
    return scene([quad_item()], itemList=["Quad" + "/" * 40])


@case
def many_slash_names_resolve():
    # Names full of slashes that do resolve: an item and its transform items.
    return scene([quad_item(name="a/b/c/d/e/f/g/h", rotation=[0, 10, 0])],
                 selection=["a/b/c/d/e/f/g/h/Rotation", "a/b/c/d/e/f/g/h"])


def main():
    if sys.argv[1:] == ["--list"]:
        print("\n".join(CASES))
        return
    if len(sys.argv) < 3:
        sys.exit(__doc__.strip())
    out = pathlib.Path(sys.argv[1])
    out.mkdir(parents=True, exist_ok=True)
    for name in sys.argv[2:]:
        make = CASES.get(name) or HELPERS.get(name)
        if not make:
            sys.exit(f"make_scenes.py: no case \"{name}\"")
        text = make()
        (out / f"{name}.json").write_bytes(text if isinstance(text, bytes) else text.encode())


if __name__ == "__main__":
    main()
