// The report form's period and dates: picking a date means the period "Start and End Dates", and
// any other period has no dates. The links "Select Date" open a calendar.
'use strict';

jQuery(($) => {
    const customPeriod = 11;
    const period = document.getElementById('reportPeriod');
    const start = document.getElementById('startDate');
    const end = document.getElementById('endDate');
    if (!period || !start || !end) return;

    const tell = (date) => date.dispatchEvent(new Event('input', { bubbles: true }));
    for (const date of [start, end]) {
        date.addEventListener('input', () => {
            if (date.value) period.selectedIndex = customPeriod;
        });
    }
    period.addEventListener('change', () => {
        if (period.selectedIndex === customPeriod) return;
        for (const date of [start, end]) {
            date.value = '';
            tell(date);
        }
    });

    // The keyboard stays in the text field while the calendar is open, so the day that it would
    // choose is said.
    const said = $('<div>', { class: 'srOnly', role: 'status' }).insertAfter(end);
    let help = '';
    const sayDay = ({ selectedYear, selectedMonth, selectedDay }) => {
        const day = new Date(selectedYear, selectedMonth, selectedDay);
        said.text($.datepicker.formatDate('DD d MM yy', day) + help);
        help = '';
    };
    $([start, end]).datepicker({
        dateFormat: 'yy-mm-dd',
        firstDay: 1,
        showOn: 'link',
        constrainInput: false,
        changeMonth: true,
        changeYear: true,
        showAnim: '',
        beforeShow: (field) => {
            help = '. Control and the arrow keys go to other days, Enter takes one.';
            const first = field === end && /^\d{4}-\d\d-\d\d$/.test(start.value) ? start.value : null;
            return { minDate: first, defaultDate: first };
        },
        onUpdateDatepicker: sayDay,
        onSelect: (_text, { input }) => {
            tell(input[0]);
            input.trigger('focus');
        },
        onClose: () => said.text(''),
    });
    for (const link of document.querySelectorAll('.selectDate')) {
        link.hidden = false;
        link.addEventListener('click', (event) => {
            event.preventDefault();
            $(link.hash).trigger('focus').datepicker('show');
        });
    }
});
