// The animation phase: the scene timeline, every action of the actor, or
// only its active action, sampled into glTF animations.
#pragma once

#include "core/export_context.h"

// Does nothing when the "animation" option is 0. Leaves the actor's active
// action and the scene's evaluation time as it found them.
void exportAnimation(ExportContext& context);
