#pragma once

class Stage;

/// What the manual shows, each function one chapter of it; they throw StageError. They count on the order in
/// which they stand here.
namespace pictures {

void takeStart(Stage& stage);
void takeApplications(Stage& stage);
void takeReport(Stage& stage);
void takeProfiles(Stage& stage);
void takeDialogs(Stage& stage);
void takeDark(Stage& stage);

} // namespace pictures
