// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/** What can show and hide the boxes that float over the panels. Message thread; an unknown id does nothing. */
class DialogListener
{
public:
    static constexpr int aboutBox = 0; // the only dialog there is

    virtual ~DialogListener() = default;
    virtual void openDialog (int dialogId) = 0;
    virtual void closeDialog (int dialogId) = 0;
};
