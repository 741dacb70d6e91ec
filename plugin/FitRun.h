#pragma once

/// Runs a fit with the current parameters while the dialog `WhiskyBar` shows its progress and offers to
/// cancel it. The host's events are processed once after that dialog has appeared, once after the target's
/// own orientation, and once after each rotation axis. True when `Solutions` holds a result to show.
///
/// There is one set of parameters and one list of solutions, so a fit that is asked for from inside the event
/// processing of another one is refused, on the warning channel.
bool runfit();

/// Whether a fit is running: the caller then sits in its event processing, and must leave `Solutions` alone.
bool IsFitting();

/// Cancels the running fit, if there is one, as the Cancel button does.
void StopFit();
