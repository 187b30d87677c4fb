// Says what is missing among the report form's criteria before they are sent, in the words that the
// portal would use.
'use strict';

document.addEventListener('DOMContentLoaded', () => {
    const form = document.getElementById('searchForm');
    if (!form) return;
    const isEmpty = (field) => field.value.trim() === '';
    const named = (name) => form.elements.namedItem(name);

    const takeBack = (field) => {
        field.classList.remove('invalid');
        field.removeAttribute('aria-invalid');
        document.getElementById(`${field.name}_error`)?.remove();
    };
    const complain = (field, text) => {
        const message = document.createElement('span');
        message.id = `${field.name}_error`;
        message.className = 'fieldError';
        message.role = 'alert';
        message.textContent = text;
        field.closest('.formField').append(message);
        field.classList.add('invalid');
        field.setAttribute('aria-invalid', 'true');
        field.setAttribute('aria-describedby', message.id);
    };

    const [start, end, entity] = ['startDate', 'endDate', 'suggest1'].map(named);
    const contacts = [...form.querySelectorAll('.contactGrid input')];
    const isContactSought = () => named('searchtype')?.value === 'contact' && !isEmpty(entity);
    const checks = [
        {
            field: start && end,
            isWrong: () => !isEmpty(start) && !isEmpty(end) && end.value < start.value.slice(0, 10),
            text: 'The end date lies before the start date.',
        },
        {
            field: 'mandatoryEntity' in form.dataset && entity,
            isWrong: () => isEmpty(entity) && !named('globcb1')?.checked,
            text: 'This field is mandatory',
        },
        {
            field: 'mandatoryContact' in form.dataset && contacts[0],
            isWrong: () => contacts.every(isEmpty) && !isContactSought(),
            text: 'You must specify at least one contact for this report.',
        },
    ].filter(({ field }) => field);

    form.addEventListener('submit', (event) => {
        if (event.submitter?.formNoValidate) return;
        for (const { field } of checks) takeBack(field);
        const wrong = checks.filter(({ isWrong }) => isWrong());
        if (wrong.length === 0) return;
        event.preventDefault();
        for (const { field, text } of wrong) complain(field, text);
        wrong[0].field.focus();
    });
    form.addEventListener('input', ({ target }) => {
        if (contacts.includes(target)) takeBack(contacts[0]);
        else if (target.name === 'globcb1') takeBack(entity);
        else if (target.classList.contains('invalid')) takeBack(target);
    });
});
