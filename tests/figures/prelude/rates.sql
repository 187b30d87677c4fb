-- The customer's uplift and VAT, both per cent.
SET @markup = CAST(IFNULL((SELECT AttribValue FROM CustomerAttribute
        WHERE CustomerId = @customer AND AttribName = 'markup'), 0) AS DECIMAL(8,4)),
    @vatrate = CAST(IFNULL((SELECT AttribValue FROM CustomerAttribute
        WHERE CustomerId = @customer AND AttribName = 'vatrate'), 0) AS DECIMAL(8,4));
