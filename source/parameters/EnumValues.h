// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/** Rows of the enumerations, as panel and host show them. */
struct MeterValues
{
    static constexpr const char* rows[] { "In", "Control", "Out" };
};
struct RatioValues
{
    static constexpr const char* rows[] { "1.5:1", "2:1", "3:1", "4:1", "6:1" };
};
struct AttackValues
{
    static constexpr const char* rows[] { "2uS", "0.5mS", "2mS", "10mS" };
};
struct RecoveryValues
{
    static constexpr const char* rows[] { "100mS", "400mS", "800mS", "1.5S", "Auto" };
};
