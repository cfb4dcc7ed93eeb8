-- KWRC's list of problem descriptions that are not real problems; they are
-- stored as resolved when a case lists them.
INSERT INTO settings (category, value) VALUES ('Non-problems', 'Healthy, None, Orphan');
