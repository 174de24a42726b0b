// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/** What a control has to tell, and to ask, when it has changed its record: the plug-in answers.

    Threads  any, like the changes themselves.
*/
class SettingsOwner
{
public:
    /** The records have changed: what the active one holds goes to the engine. */
    virtual void applySettings() = 0;

    /** Moves another control, for Link, by the road of a control change. */
    virtual void setParameter (int index, float newValue) = 0;

    /** The same, and tells the host. */
    virtual void setParameterNotifyingHost (int index, float newValue) = 0;

    /** True in a host that takes it amiss to be told of linked controls. */
    virtual bool hostWantsSilentLink() const noexcept = 0;

protected:
    ~SettingsOwner() = default;
};
