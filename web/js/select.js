// The report form's choices that depend on each other. Of its drop-down lists, but for the period
// and the kind of name that is searched for, only one can choose: the others go back to their first
// entry. Of the call types, one at least is ticked.
"use strict";

document.addEventListener("DOMContentLoaded", () => {
    const lists = document.querySelectorAll(
        "#searchForm select:not(#reportPeriod, #searchtype, #A_searchtype)",
    );
    const selectChange = (event) => {
        for (const other of lists) if (other !== event.target) other.selectedIndex = 0;
    };
    for (const list of lists) list.addEventListener("change", selectChange);

    const types = ["external", "internal"].map((id) => document.getElementById(id));
    if (types.includes(null)) return;
    for (const [i, type] of types.entries()) {
        type.addEventListener("change", () => {
            if (!type.checked) types[1 - i].checked = true;
        });
    }
});
