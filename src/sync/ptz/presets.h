// PTZ presets (-p N, -q N) and preset tours (sync command 14): the camera's
// preset labels and guard tours carried into the ONVIF preset list and the
// ONVIF preset tour files.
#pragma once

#include <array>
#include <string>

#include "shm/block.h"

namespace onvif {

// Copies the label of preset N (1 to 256) into "Preset.conf". Fails silently:
// a missing source, a preset not found or a missing list changes nothing.
void Update_SetPreset(shm::ShmBlock& block, int preset);
// Empties preset N in "Preset.conf"; silent as above.
void Update_DeletePreset(shm::ShmBlock& block, int preset);

// The guard tours 1 to 8 as ONVIF preset tours.
int Update_PresetTour(shm::ShmBlock& block);

using TourStates = std::array<int, 8>;  // 1: tour k+1 is defined ("set")

void CHECK_PRESET_TOUR_CREATE_STATE(TourStates& states);
void UPDATE_PRESET_TOUR_CREATE_CONF(const TourStates& states);
void UPDATE_PRESET_TOUR_FILES(const TourStates& states);
// Rewrites one ONVIF tour file from one guard tour file.
void UPDATE_PRESET_TOUR_X_CONF(const std::string& onvifTour, const std::string& guardTour);

}  // namespace onvif
