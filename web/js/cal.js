// The report form's period and dates: picking a date means the period "Start and End Dates", and
// any other period has no dates. The links "Select Date" open a calendar.
'use strict';

jQuery(($) => {
    const customPeriod = 11;
    const period = document.getElementById('reportPeriod');
    const start = document.getElementById('startDate');
    const end = document.getElementById('endDate');
    if (!period || !start || !end) return;

    const chooseDates = () => {
        if (start.value || end.value) period.selectedIndex = customPeriod;
    };
    for (const date of [start, end]) date.addEventListener('input', chooseDates);
    period.addEventListener('change', () => {
        if (period.selectedIndex !== customPeriod) start.value = end.value = '';
    });

    // The keyboard stays in the text field while the calendar is open, so the day that it would
    // choose is said.
    const said = $('<div>', { class: 'srOnly', role: 'status' }).insertAfter(end);
    const sayDay = ({ selectedYear, selectedMonth, selectedDay }) => {
        const day = new Date(selectedYear, selectedMonth, selectedDay);
        said.text($.datepicker.formatDate('DD d MM yy', day));
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
            const isEndOf = field === end && /^\d{4}-\d\d-\d\d$/.test(start.value);
            return { minDate: isEndOf ? start.value : null };
        },
        onUpdateDatepicker: sayDay,
        onSelect: (_text, { input }) => {
            chooseDates();
            input.trigger('focus');
        },
        onClose: () => said.text('Ctrl and the arrow keys choose a day, Enter takes it'),
    });
    for (const link of document.querySelectorAll('.selectDate')) {
        link.hidden = false;
        link.addEventListener('click', (event) => {
            event.preventDefault();
            const field = $(link.hash);
            field.trigger('focus').datepicker('show');
        });
    }
});
