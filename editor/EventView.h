/// The pane of the editor that shows the loaded pattern, with a cursor where it plays. The pattern
/// is dragged out of it as a MIDI file.
#pragma once
#include "shared/Panes/carbon/ControlPane.h"
#include "shared/Panes/kvMenu.h"

#include <cstdint>

class CLooper;

/// Thread: user interface.
class EventView : public korvanel::macosx::carbon::ControlPane
{
public:
    explicit EventView(CLooper* looper); ///< not owned; null shows nothing

    void AfterCreate() override;   ///< the cursor begins to move
    void BeforeDestroy() override; ///< and stops
    void DrawSelf(Korvanel::GraphicsContext& g) override;
    void HandleMouse(Korvanel::MouseEvent& event) override;
    void HandleMouseMotion(Korvanel::MouseEvent& event) override;

    /// Moves the cursor by drawing over its old and its new column; nothing while it stands.
    void DrawTick();

    /// Draws again what tells whether the pattern is heard, if that is another than at the last
    /// call: a host's automation lets notes through without telling anybody.
    void FollowState();

    /// Shows the menu where the mouse is. @return the chosen item's index, -1 for none
    int ShowContextualMenu(Korvanel::MenuItemList& items);

    std::int32_t cursorX() const { return mCursorX; } ///< in the inner rectangle, as last drawn

private:
    bool isPlaying() const; ///< with an effect
    void dragWhenMoved(const Korvanel::MouseEvent& event);
    Korvanel::Rect inner() const;
    Korvanel::Rect cursorAt(std::int32_t x) const;
    void drawCursor(Korvanel::GraphicsContext& g, std::int32_t x) const;

    CLooper* mLooper;
    std::int32_t mCursorX = 0;
    Korvanel::Ref<Korvanel::Delegate> mTickTask;
    Korvanel::Point mDownPoint;
    bool mDragArmed = false;
    bool mWasPlaying = false; ///< when FollowState last looked
};
