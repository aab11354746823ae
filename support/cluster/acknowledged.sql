-- Holds the table `acknowledged`, which is filled before this, against what is recorded. Prints how many punches were
-- acknowledged, how many rows those people have, how many acknowledged punches have no row, and how many people do not have
-- exactly one.
WITH recorded AS (
    SELECT a.employee_id, p.type,
           to_char(to_timestamp(p.at / 1000.0) AT TIME ZONE 'UTC', 'YYYY-MM-DD"T"HH24:MI:SS.MS"Z"') AS at
    FROM punches p JOIN attendance a ON a.id = p.attendance_id
    WHERE a.employee_id IN (SELECT employee_id FROM acknowledged)
)
SELECT (SELECT count(*) FROM acknowledged),
       (SELECT count(*) FROM recorded),
       (SELECT count(*) FROM acknowledged k
        WHERE NOT EXISTS (SELECT FROM recorded r WHERE r.employee_id = k.employee_id AND r.type = k.type AND r.at = k.at)),
       (SELECT count(*) FROM acknowledged k
        WHERE (SELECT count(*) FROM recorded r WHERE r.employee_id = k.employee_id) <> 1);
