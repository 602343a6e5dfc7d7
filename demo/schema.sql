-- The embedded demo data source: a wholesale plant nursery, its customers, orders and ledger.
-- Read by the sqlite3 shell. Every row follows from arithmetic on a counter, so two builds of the
-- database hold the same rows.
-- The declared types are those that the SQLite ODBC driver describes usefully: INTEGER, SMALLINT, DOUBLE,
-- DATE, TIMESTAMP and VARCHAR(n) as themselves, CHAR(n) as VARCHAR(n), NUMERIC(p,s) as a double and
-- DECIMAL(p,s) as VARCHAR(p). So an amount of DECIMAL(11,2) stays below 12 characters here.

PRAGMA foreign_keys = ON;
PRAGMA journal_mode = DELETE;
BEGIN;

CREATE TABLE COUNTRY (
  CODE       CHAR(2)     NOT NULL,
  NAME       VARCHAR(40) NOT NULL,
  CURRENCY   CHAR(3)     NOT NULL,
  VAT_RATE   NUMERIC(5,2),
  CONSTRAINT COUNTRY_PK PRIMARY KEY (CODE)
);
CREATE UNIQUE INDEX COUNTRY_NAME ON COUNTRY (NAME);

CREATE TABLE CUSTOMER (
  CUSTNO       INTEGER       NOT NULL,
  NAME         VARCHAR(60)   NOT NULL,
  CITY         VARCHAR(40)   NOT NULL,
  COUNTRY      CHAR(2)       NOT NULL,
  TAX_ID       VARCHAR(16)   NOT NULL,
  CREDIT_LIMIT DECIMAL(11,2),
  SINCE        DATE          NOT NULL,
  REMARK       VARCHAR(80),
  CONSTRAINT CUSTOMER_PK PRIMARY KEY (CUSTNO),
  CONSTRAINT CUSTOMER_COUNTRY FOREIGN KEY (COUNTRY) REFERENCES COUNTRY (CODE)
);
CREATE UNIQUE INDEX CUSTOMER_TAX_ID ON CUSTOMER (TAX_ID);
CREATE INDEX CUSTOMER_CITY ON CUSTOMER (COUNTRY, CITY);

CREATE TABLE GROWER (
  GROWNO     SMALLINT    NOT NULL,
  NAME       VARCHAR(40) NOT NULL,
  COUNTRY    CHAR(2)     NOT NULL,
  HECTARES   DOUBLE,
  CONSTRAINT GROWER_PK PRIMARY KEY (GROWNO),
  CONSTRAINT GROWER_COUNTRY FOREIGN KEY (COUNTRY) REFERENCES COUNTRY (CODE)
);

CREATE TABLE ARTICLE (
  ARTNO      INTEGER       NOT NULL,
  LATIN_NAME VARCHAR(40)   NOT NULL,
  COMMON     VARCHAR(40),
  POT_CM     SMALLINT      NOT NULL,
  GROWNO     SMALLINT      NOT NULL,
  PRICE      DECIMAL(11,2) NOT NULL CHECK (PRICE > 0),
  WEIGHT_KG  DOUBLE        NOT NULL,
  LISTED_ON  DATE          NOT NULL,
  CONSTRAINT ARTICLE_PK PRIMARY KEY (ARTNO),
  CONSTRAINT ARTICLE_GROWER FOREIGN KEY (GROWNO) REFERENCES GROWER (GROWNO)
);
CREATE UNIQUE INDEX ARTICLE_NAME_POT ON ARTICLE (LATIN_NAME, POT_CM);
CREATE INDEX ARTICLE_GROWER_IX ON ARTICLE (GROWNO);

CREATE TABLE SALES_ORDER (
  ORDNO      INTEGER   NOT NULL,
  CUSTNO     INTEGER   NOT NULL,
  ORDERED_ON DATE      NOT NULL,
  ENTERED_AT TIMESTAMP NOT NULL,
  SHIPPED_ON DATE,
  CONSTRAINT SALES_ORDER_PK PRIMARY KEY (ORDNO),
  CONSTRAINT SALES_ORDER_CUSTOMER FOREIGN KEY (CUSTNO) REFERENCES CUSTOMER (CUSTNO)
);
CREATE INDEX SALES_ORDER_CUSTNO ON SALES_ORDER (CUSTNO, ORDERED_ON);

CREATE TABLE ORDER_LINE (
  ORDNO    INTEGER       NOT NULL,
  LINE     SMALLINT      NOT NULL,
  ARTNO    INTEGER       NOT NULL,
  PIECES   INTEGER       NOT NULL CHECK (PIECES > 0),
  PRICE    DECIMAL(11,2) NOT NULL,
  DISCOUNT NUMERIC(5,2),
  CONSTRAINT ORDER_LINE_PK PRIMARY KEY (ORDNO, LINE),
  CONSTRAINT ORDER_LINE_ORDER FOREIGN KEY (ORDNO) REFERENCES SALES_ORDER (ORDNO) ON DELETE CASCADE,
  CONSTRAINT ORDER_LINE_ARTICLE FOREIGN KEY (ARTNO) REFERENCES ARTICLE (ARTNO)
);
CREATE INDEX ORDER_LINE_ARTNO ON ORDER_LINE (ARTNO);

CREATE TABLE LEDGER (
  ENTRY      INTEGER       NOT NULL,
  CUSTNO     INTEGER       NOT NULL,
  REFERENCE  VARCHAR(24),
  AMOUNT     DECIMAL(11,2) NOT NULL,
  POSTED_ON  DATE          NOT NULL,
  CLEARED_AT TIMESTAMP,
  CONSTRAINT LEDGER_PK PRIMARY KEY (ENTRY),
  CONSTRAINT LEDGER_CUSTOMER FOREIGN KEY (CUSTNO) REFERENCES CUSTOMER (CUSTNO)
);
CREATE INDEX LEDGER_CUSTNO ON LEDGER (CUSTNO, POSTED_ON);

-- Stays empty: the place to try INSERT, UPDATE and DELETE.
CREATE TABLE CALL_LIST (
  CUSTNO  INTEGER      NOT NULL,
  CALL_ON DATE         NOT NULL,
  TOPIC   VARCHAR(60),
  DONE_AT TIMESTAMP,
  CONSTRAINT CALL_LIST_PK PRIMARY KEY (CUSTNO, CALL_ON),
  CONSTRAINT CALL_LIST_CUSTOMER FOREIGN KEY (CUSTNO) REFERENCES CUSTOMER (CUSTNO)
);

CREATE VIEW OPEN_ORDER AS
  SELECT O.ORDNO, O.CUSTNO, C.NAME, C.COUNTRY, O.ORDERED_ON, COUNT(*) AS LINES, SUM(L.PIECES) AS PIECES
  FROM SALES_ORDER O
  JOIN CUSTOMER C ON C.CUSTNO = O.CUSTNO
  JOIN ORDER_LINE L ON L.ORDNO = O.ORDNO
  WHERE O.SHIPPED_ON IS NULL
  GROUP BY O.ORDNO, O.CUSTNO, C.NAME, C.COUNTRY, O.ORDERED_ON;

CREATE VIEW CUSTOMER_BALANCE AS
  SELECT C.CUSTNO, C.NAME, C.CITY, C.CREDIT_LIMIT, ROUND(SUM(G.AMOUNT), 2) AS BALANCE, MAX(G.POSTED_ON) AS LAST_POSTING
  FROM CUSTOMER C
  JOIN LEDGER G ON G.CUSTNO = C.CUSTNO
  WHERE G.CLEARED_AT IS NULL
  GROUP BY C.CUSTNO, C.NAME, C.CITY, C.CREDIT_LIMIT;

INSERT INTO COUNTRY (CODE, NAME, CURRENCY, VAT_RATE) VALUES
  ('AT', 'Österreich', 'EUR', 13.00),
  ('CH', 'Schweiz', 'CHF', 2.60),
  ('CZ', 'Česko', 'CZK', 21.00),
  ('DE', 'Deutschland', 'EUR', 7.00),
  ('DK', 'Danmark', 'DKK', 25.00),
  ('ES', 'España', 'EUR', 10.00),
  ('FR', 'France', 'EUR', 10.00),
  ('GR', 'Ελλάδα', 'EUR', 13.00),
  ('IS', 'Ísland', 'ISK', NULL),
  ('JP', '日本', 'JPY', NULL),
  ('PL', 'Polska', 'PLN', 8.00),
  ('SE', 'Sverige', 'SEK', 25.00);

INSERT INTO GROWER (GROWNO, NAME, COUNTRY, HECTARES) VALUES
  (1, 'Obstgehölze Müller & Söhne', 'DE', 42.5),
  (2, 'Pépinières du Val d''Ay', 'FR', 18.25),
  (3, 'Školky Třebechovický', 'CZ', 31.0),
  (4, 'Szkółka Wiśniewska', 'PL', 27.75),
  (5, 'Växthus Ängelholm', 'SE', 6.4),
  (6, 'Viveros Peñalara', 'ES', 55.0),
  (7, 'Planteskolen Ærø', 'DK', NULL),
  (8, 'Bergstauden Grüezi', 'CH', 2.1);

-- 400 customers: 20 towns times 20 family names.
INSERT INTO CUSTOMER (CUSTNO, NAME, CITY, COUNTRY, TAX_ID, CREDIT_LIMIT, SINCE, REMARK)
WITH TOWN (T, CITY, COUNTRY, SHOP) AS (VALUES
  (0, 'Linz', 'AT', 'Gärtnerei'), (1, 'Sankt Pölten', 'AT', 'Blumenhof'), (2, 'Zürich', 'CH', 'Gartencenter'),
  (3, 'Genève', 'CH', 'Jardinerie'), (4, 'Třebíč', 'CZ', 'Zahradnictví'), (5, 'Plzeň', 'CZ', 'Květiny'),
  (6, 'Köln', 'DE', 'Baumschule'), (7, 'Görlitz', 'DE', 'Gartenmarkt'), (8, 'Ærøskøbing', 'DK', 'Planteskole'),
  (9, 'A Coruña', 'ES', 'Floristería'), (10, 'Besançon', 'FR', 'Pépinière'), (11, 'Orléans', 'FR', 'Fleurs'),
  (12, 'Θεσσαλονίκη', 'GR', 'Φυτώριο'), (13, 'Ísafjörður', 'IS', 'Gróðrarstöð'), (14, '京都', 'JP', '園芸店'),
  (15, 'Łódź', 'PL', 'Kwiaciarnia'), (16, 'Gdańsk', 'PL', 'Ogrodnictwo'), (17, 'Malmö', 'SE', 'Plantskola'),
  (18, 'Göteborg', 'SE', 'Blommor'), (19, 'Umeå', 'SE', 'Trädgård')),
FAMILY (F, NAME) AS (VALUES
  (0, 'Abel'), (1, 'Bäumler'), (2, 'Cervera'), (3, 'Dvořák'), (4, 'Eðvarðsson'), (5, 'Förster'), (6, 'García'),
  (7, 'Håkansson'), (8, 'Ivanić'), (9, 'Jørgensen'), (10, 'Kowalczyk'), (11, 'Lefèvre'), (12, 'Månsson'),
  (13, 'Nuñez'), (14, 'Öztürk'), (15, 'Παπαδόπουλος'), (16, 'Quenneville'), (17, 'Řezníček'), (18, 'Strauß'), (19, '田中'))
SELECT 1000 + T * 20 + F,
       SHOP || ' ' || NAME,
       CITY,
       COUNTRY,
       COUNTRY || printf('%09d', (T * 20 + F) * 2345677 % 999999937),
       CASE WHEN (T + F) % 7 = 0 THEN NULL ELSE 5000.00 + (T * 37 + F * 53) % 96 * 1250.50 END,
       date('1994-03-01', '+' || ((T * 20 + F) * 23) || ' days'),
       CASE (T * 3 + F) % 11 WHEN 0 THEN 'Deliver before 7 o''clock' WHEN 4 THEN 'Sammelrechnung, monatlich' WHEN 8 THEN '' END
FROM TOWN CROSS JOIN FAMILY
ORDER BY T, F;

-- 150 articles: 30 plants in five pot sizes.
INSERT INTO ARTICLE (ARTNO, LATIN_NAME, COMMON, POT_CM, GROWNO, PRICE, WEIGHT_KG, LISTED_ON)
WITH PLANT (P, LATIN, COMMON) AS (VALUES
  (0, 'Acer palmatum', 'Fächerahorn'), (1, 'Achillea millefolium', 'Yarrow'), (2, 'Aquilegia vulgaris', 'Akelei'),
  (3, 'Aster amellus', 'Astra'), (4, 'Bergenia cordifolia', NULL), (5, 'Buxus sempervirens', 'Box'),
  (6, 'Calluna vulgaris', 'Heather'), (7, 'Campanula persicifolia', 'Clochette'), (8, 'Cornus mas', 'Dřín'),
  (9, 'Crocus sativus', 'Saffron'), (10, 'Dianthus deltoides', 'Goździk'), (11, 'Echinacea purpurea', NULL),
  (12, 'Festuca glauca', 'Blue fescue'), (13, 'Geranium sanguineum', 'Blodnäva'), (14, 'Helleborus niger', 'Christrose'),
  (15, 'Hosta sieboldiana', 'ギボウシ'), (16, 'Iris sibirica', 'Iris de Sibérie'), (17, 'Juniperus communis', 'Einir'),
  (18, 'Lavandula angustifolia', 'Λεβάντα'), (19, 'Mentha × piperita', 'Peppermint'), (20, 'Narcissus poeticus', 'Narzisse'),
  (21, 'Origanum vulgare', 'Ρίγανη'), (22, 'Paeonia officinalis', 'Peónia'), (23, 'Primula veris', 'Gullviva'),
  (24, 'Rosa glauca', 'Růže'), (25, 'Salvia officinalis', 'Sauge'), (26, 'Sedum acre', NULL),
  (27, 'Thymus serpyllum', 'Tomillo'), (28, 'Tulipa sylvestris', 'Wildtulpe'), (29, 'Viola odorata', 'Fiołek')),
POT (K, CM, FACTOR) AS (VALUES (0, 7, 1.0), (1, 9, 1.4), (2, 11, 2.1), (3, 15, 3.6), (4, 23, 8.2))
SELECT 20001 + P * 5 + K,
       LATIN,
       COMMON,
       CM,
       1 + (P * 5 + K) % 8,
       ROUND((1.15 + P * 17 % 29 * 0.35) * FACTOR, 2),
       ROUND(CM * CM * CM / 2900.0, 3),
       date('2005-02-28', '+' || (P * 181 + K * 29) || ' days')
FROM PLANT CROSS JOIN POT
ORDER BY P, K;

-- 8,000 orders from 2016 to 2023; those of the last weeks are not shipped yet.
INSERT INTO SALES_ORDER (ORDNO, CUSTNO, ORDERED_ON, ENTERED_AT, SHIPPED_ON)
WITH RECURSIVE COUNTER (N) AS (SELECT 0 UNION ALL SELECT N + 1 FROM COUNTER WHERE N < 7999)
SELECT 500001 + N,
       1000 + N * 7919 % 400,
       date('2016-01-04', '+' || (N * 2915 / 8000) || ' days'),
       datetime('2016-01-04', '+' || (N * 2915 / 8000) || ' days', '+' || (25200 + N * 3571 % 36000) || ' seconds'),
       CASE WHEN N < 7900 THEN date('2016-01-04', '+' || (N * 2915 / 8000 + 1 + N % 9) || ' days') END
FROM COUNTER;

-- One to five lines an order.
INSERT INTO ORDER_LINE (ORDNO, LINE, ARTNO, PIECES, PRICE, DISCOUNT)
WITH POSITION (K) AS (VALUES (1), (2), (3), (4), (5))
SELECT O.ORDNO,
       K,
       A.ARTNO,
       5 + (O.ORDNO * 13 + K * 29) % 60 * 5,
       A.PRICE,
       CASE (O.ORDNO + K) % 6 WHEN 0 THEN 2.50 WHEN 3 THEN 5.00 END
FROM SALES_ORDER O
CROSS JOIN POSITION
JOIN ARTICLE A ON A.ARTNO = 20001 + (O.ORDNO * 31 + K * 47) % 150
WHERE K <= 1 + O.ORDNO % 5
ORDER BY O.ORDNO, K;

-- 100,000 ledger entries: invoices, and three payments among seven. One entry in nine has no reference; the
-- newest and every thirteenth are not cleared.
INSERT INTO LEDGER (ENTRY, CUSTNO, REFERENCE, AMOUNT, POSTED_ON, CLEARED_AT)
WITH RECURSIVE COUNTER (N) AS (SELECT 1 UNION ALL SELECT N + 1 FROM COUNTER WHERE N < 100000)
SELECT N,
       1000 + N * 6007 % 400,
       CASE WHEN N % 9 = 0 THEN NULL
            WHEN N % 7 IN (0, 2, 4) THEN 'Überweisung ' || printf('%06d', N)
            ELSE 'Rechnung ' || printf('%06d', N) END,
       CASE WHEN N % 7 IN (0, 2, 4) THEN -1 ELSE 1 END * (1 + N * 48271 % 2147483647 * 16807 % 2147483647 % 499979) / 100.0,
       date('2014-01-01', '+' || (N * 3640 / 100000) || ' days'),
       CASE WHEN N < 94000 AND N % 13 <> 5
            THEN datetime('2014-01-01', '+' || (N * 3640 / 100000 + 10 + N % 21) || ' days', '+' || (N * 7561 % 86400) || ' seconds')
       END
FROM COUNTER;

COMMIT;
