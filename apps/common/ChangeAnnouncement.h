#pragma once

class cTolvaDatabase;

/// Lists on other computers learn of a change by the station's change stamp, which saving a message moves and deleting
/// or moving one does not. The programs move it themselves.

/// From now on each deletion of a message or a prize through this object is announced.
void AnnounceDeletions(cTolvaDatabase& database);
/// Announces a change that was made just now.
void AnnounceChange(cTolvaDatabase& database);
