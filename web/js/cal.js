// The report form's period and dates: picking a date means the period "Start and End Dates", and
// any other period has no dates.
"use strict";

document.addEventListener("DOMContentLoaded", () => {
    const customPeriod = 11;
    const period = document.getElementById("reportPeriod");
    const dates = document.querySelectorAll("#startDate, #endDate");
    if (!period) return;

    for (const date of dates) {
        date.addEventListener("change", () => {
            if (date.value !== "") period.selectedIndex = customPeriod;
        });
    }
    period.addEventListener("change", () => {
        if (period.selectedIndex === customPeriod) return;
        for (const date of dates) date.value = "";
    });
});
